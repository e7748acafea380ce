"""Waiting for events, for tests: generous with time, strict with mistakes of the test itself."""
import time

# How long an event may take on a busy machine; tests of delays say their own limit.
PATIENCE = 60.0

# What no patience mends: a misspelt name or attribute, a call that does not fit.
_MISTAKES = (NameError, ImportError, SyntaxError, TypeError, AttributeError)


class TimeOut(AssertionError):
    pass


def _is_mistake(error):
    if isinstance(error, _MISTAKES):
        # A widget that is not there yet, or no more, is None.
        return "'NoneType' object" not in str(error)
    return isinstance(error, AssertionError) and not isinstance(error, TimeOut)


def wait_until(condition, what, seconds=PATIENCE):
    """The first true value of condition(); what it asks for may fail until then, as a file or a
    widget does that is not there yet. A mistake in the condition fails at once."""
    deadline = time.monotonic() + seconds
    while True:
        trouble = None
        try:
            value = condition()
            if value:
                return value
        # The accessibility bus raises errors of many kinds for a widget that has just gone.
        except Exception as error:  # pylint: disable=broad-exception-caught
            if _is_mistake(error):
                raise
            trouble = error
        if time.monotonic() > deadline:
            raise TimeOut(f"waited {seconds} s for {what}") from trouble
        time.sleep(0.02)
