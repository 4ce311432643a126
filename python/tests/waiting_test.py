"""Many threads on one object, and callers that stop waiting. A log function that blocks makes an operation last."""

import concurrent.futures
import contextlib
import threading

import pytest

import kestova
from kestova import ProblemCode


class Gate:
    """Holds an operation at its first record until it is opened."""

    def __init__(self):
        self.reached = threading.Event()
        self._open = threading.Event()

    def log(self, _level, _text):
        self.reached.set()
        self._open.wait()

    def open(self):
        self._open.set()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.open()


@contextlib.contextmanager
def held_switch():
    """An object whose switch is held at a gate, and the future of its caller."""
    with kestova.Kestova() as recovery, concurrent.futures.ThreadPoolExecutor() as threads, Gate() as gate:
        recovery.initialize()
        recovery.set_log(gate.log)
        caller = threads.submit(recovery.set_rcvprt_active)
        gate.reached.wait()
        yield recovery, gate, caller


def code_of(call):
    with pytest.raises(kestova.KestovaError) as caught:
        call()
    return caught.value.problem.code


def test_stop_waiting_caller_is_released_and_the_switch_ends(pc):
    pc("factory-mbr")
    with held_switch() as (recovery, gate, caller):
        recovery.stop_waiting()
        assert code_of(caller.result) is ProblemCode.STOPPED
        assert recovery.wait(0) is False
        assert code_of(recovery.is_dynamic) is ProblemCode.BUSY
        gate.open()
        assert recovery.wait(600) is True
        problem = recovery.last_problem()
        assert (problem.code, problem.operation, problem.result) == (ProblemCode.NONE, "SetRcvprtActive", 0)
        assert recovery.is_dynamic() == 0


def test_wait_that_is_over_caller_is_released(pc):
    pc("factory-mbr")
    with kestova.Kestova() as recovery, Gate() as gate:
        recovery.initialize()
        recovery.set_log(gate.log)
        recovery.set_wait(0.001)
        assert code_of(recovery.set_rcvprt_active) is ProblemCode.STOPPED
        gate.open()
        assert recovery.wait(600)
        recovery.set_wait(None)
        assert recovery.set_system_active() is kestova.SwitchBackResult.DONE


def test_caller_who_waits_for_the_result_gets_it(pc):
    pc("factory-mbr")
    with held_switch() as (_, gate, caller):
        assert not caller.done()
        gate.open()
        assert caller.result() is kestova.SwitchResult.DONE


def test_close_while_the_switch_runs_waits_for_its_end(pc):
    pc("factory-mbr")
    with held_switch() as (recovery, gate, caller):
        recovery.stop_waiting()
        assert code_of(caller.result) is ProblemCode.STOPPED
        with concurrent.futures.ThreadPoolExecutor() as threads:
            closing = threads.submit(recovery.close)
            gate.open()
            closing.result()
        assert code_of(recovery.is_dynamic) is ProblemCode.HANDLE


def test_many_threads_one_object_each_gets_its_own_answer(pc):
    pc("factory-mbr")
    with kestova.Kestova() as recovery, concurrent.futures.ThreadPoolExecutor(8) as threads:
        recovery.initialize()
        partitions = [1, 2, 3, 4] * 10
        letters = threads.map(lambda partition: recovery.get_drive_letter(0, partition), partitions)
        assert list(letters) == [None, "C", "D", None] * 10


def test_many_threads_an_object_each(pc):
    pc("factory-mbr")

    def switch_there_and_back(_):
        with kestova.Kestova() as recovery:
            recovery.initialize()
            return recovery.get_drive_letter(0, 2), recovery.get_win_drive_letters(0).result

    with concurrent.futures.ThreadPoolExecutor(8) as threads:
        assert set(threads.map(switch_there_and_back, range(16))) == {("C", kestova.GetWinDriveLettersResult.FAILED)}
