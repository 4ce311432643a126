"""The fixture `pc`, as tests of applications use it."""

LEAK = "pc('factory-mbr', kept={kept!r})\n    kestova.Kestova().initialize()"


def run(pytester, *bodies):
    tests = [f"def test_{number}(pc):\n    {body}\n" for number, body in enumerate(bodies)]
    pytester.makepyfile("import kestova\n\n" + "\n".join(tests))
    return pytester.runpytest_subprocess("-p", "no:cacheprovider")


def test_pc_is_opened_and_closed_for_each_test(pytester):
    body = "assert pc().is_open\n    assert pc.__name__ == 'open_pc'"
    run(pytester, body, "assert pc('factory-gpt').is_open").assert_outcomes(passed=2)


def test_object_that_a_test_leaves_open_does_not_disturb_the_next(pytester):
    body = "pc('factory-mbr')\n    recovery = kestova.Kestova()\n    recovery.initialize()\n    assert False"
    run(pytester, body, "assert pc('factory-mbr').is_open").assert_outcomes(failed=1, passed=1)


def test_pc_that_a_test_closes_is_left_alone(pytester):
    run(pytester, "pc(kept=()).close()\n    pc('factory-gpt')").assert_outcomes(passed=1)


def test_kinds_that_are_not_expected_fail_the_test(pytester):
    switch = "pc('factory-mbr', kept={})\n    r = kestova.Kestova()\n    r.initialize()\n    r.set_rcvprt_active()"
    outcome = run(pytester, switch.format("('IVdsDisk', 'VDS_DISK_PROP string')"))
    outcome.assert_outcomes(passed=1, errors=1)
    outcome.stdout.fnmatch_lines(["*not given back to the platform: {'IVdsAdvancedDisk': *}*"])
    everything = "('IVdsAdvancedDisk', 'IVdsDisk', 'VDS_DISK_PROP string')"
    run(pytester, switch.format(everything)).assert_outcomes(passed=1)
    run(pytester, switch.format("None")).assert_outcomes(passed=1)
    run(pytester, "pc('factory-mbr', kept=())").assert_outcomes(passed=1)
