"""The log function receives the records of its object."""

import sys

import pytest

import kestova
from kestova import ProblemCode


def test_records_arrive_whole_and_in_order(pc):
    pc("factory-mbr")
    log = []
    with kestova.Kestova(log=lambda level, text: log.append((level, text))) as recovery:
        recovery.initialize()
    assert log[0] == (4, "Kestova::Initialize\tStart")
    assert log[-1] == (4, "Kestova::Initialize\tEnd. bRet = 1")


def test_error_has_level_1_and_is_the_record_of_the_problem(pc):
    emulated = pc("factory-mbr")
    emulated.fail("IVdsAdvancedDisk::ChangeAttributes=E_FAIL")
    log = []
    with kestova.Kestova() as recovery:
        recovery.initialize()
        recovery.set_log(lambda level, text: log.append((level, text)))
        recovery.set_rcvprt_active()
        errors = [text for level, text in log if level == 1]
        assert errors and recovery.last_problem().record == errors[-1]


def test_no_function_no_records(pc):
    pc("factory-mbr")
    log = []
    with kestova.Kestova(log=lambda level, text: log.append(text)) as recovery:
        recovery.set_log(None)
        recovery.initialize()
        assert log == []
        recovery.set_log(lambda level, text: log.append(text))
        recovery.is_dynamic()
        assert log


def test_two_objects_each_function_has_its_own_records(pc):
    pc("factory-mbr")
    first, second = [], []
    with kestova.Kestova(log=lambda _, text: first.append(text)) as one, \
            kestova.Kestova(log=lambda _, text: second.append(text)) as other:
        one.initialize()
        count = len(first)
        other.is_dynamic()
        assert len(first) == count
        assert second and second[0].startswith("Kestova::IsDynamic")


def test_function_that_calls_its_own_object_is_refused(pc):
    pc("factory-mbr")
    codes = []

    def call(_level, _text):
        for method in (recovery.is_dynamic, recovery.close):
            with pytest.raises(kestova.KestovaError) as caught:
                method()
            codes.append(caught.value.problem.code)

    with kestova.Kestova() as recovery:
        recovery.set_log(call)
        assert recovery.initialize() is kestova.InitializeResult.READY
        recovery.set_log(None)
        assert recovery.is_dynamic() == 0
    assert codes and set(codes) == {ProblemCode.BUSY}


def test_what_a_function_raises_is_shown_and_changes_no_result(pc, monkeypatch):
    pc("factory-mbr")
    shown = []
    monkeypatch.setattr(sys, "unraisablehook", lambda what: shown.append(str(what.exc_value)))

    def fail(_level, text):
        raise RuntimeError(text)

    with kestova.Kestova(log=fail) as recovery:
        assert recovery.initialize() is kestova.InitializeResult.READY
    assert "Kestova::Initialize\tStart" in shown
