"""Waiting for events: what is waited through, and what is a mistake of the test."""
import os
import sys
import time
import unittest

sys.path.insert(0, os.path.dirname(os.path.realpath(__file__)))

from waiting import TimeOut, wait_until  # noqa: E402


def raising(error):
    def condition():
        raise error

    return condition


class WaitUntilTest(unittest.TestCase):
    def test_waits_through_what_is_not_there_yet(self):
        answers = iter(
            (
                lambda: next(iter(())),
                lambda: None.name,
                lambda: list(None),
                lambda: [][0],
                lambda: {}["key"],
                lambda: open("/not/there"),
                lambda: int(""),
                raising(TimeOut("an inner wait")),
                lambda: "there",
            )
        )
        self.assertEqual(wait_until(lambda: next(answers)(), "it", 30), "there")

    def test_a_mistake_fails_at_once(self):
        mistakes = (
            lambda: eval("mispelt"),
            lambda: "".mispelt,
            lambda: len(1),
            lambda: wait_until(),  # pylint: disable=no-value-for-parameter
            raising(AssertionError("a test's own")),
        )
        for mistake in mistakes:
            begin = time.monotonic()
            with self.assertRaises(Exception) as caught:
                wait_until(mistake, "it", 30)
            self.assertNotIsInstance(caught.exception, TimeOut)
            self.assertLess(time.monotonic() - begin, 20)

    def test_has_an_end_that_tells_the_last_trouble(self):
        with self.assertRaisesRegex(TimeOut, "for it") as caught:
            wait_until(raising(OSError("gone")), "it", 0.1)
        self.assertEqual(str(caught.exception.__cause__), "gone")


if __name__ == "__main__":
    unittest.main()
