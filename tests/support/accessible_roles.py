"""What differs between the accessibility libraries and screen readers of Debian 12 and 13.

Tests use the words of Debian 12. The library of Debian 13 calls a push button a "button", and its
screen reader says so.
"""
import re

import gi

gi.require_version("Atspi", "2.0")

from gi.repository import Atspi  # noqa: E402

_IN_WORDS_OF_TESTS = {"button": "push button"}

# A reader of Debian 12 may say the word too, in a tool tip.
_IS_NEWER = Atspi.role_get_name(Atspi.Role.PUSH_BUTTON) in _IN_WORDS_OF_TESTS
_SPOKEN_BUTTON = re.compile(r"(?<!push )(?<!radio )(?<!toggle )\bbutton\b")


def use_names_of_tests():
    """From now on every widget tells its role by the name that tests use."""
    name_of = Atspi.Accessible.get_role_name

    def role_name(widget):
        name = name_of(widget)
        return _IN_WORDS_OF_TESTS.get(name, name)

    Atspi.Accessible.getRoleName = role_name


def in_words_of_tests(said):
    """What a screen reader said, with the words that tests use."""
    return _SPOKEN_BUTTON.sub("push button", said) if _IS_NEWER else said
