"""The virtual sound cards, and the sound that they were given."""
import array
import math
import operator
import os
import wave

from waiting import PATIENCE, wait_until


class Sound:
    def __init__(self, path):
        with wave.open(path) as file:
            self.rate, self.channels = file.getframerate(), file.getnchannels()
            self.samples = array.array("h", file.readframes(file.getnframes()))

    @property
    def frames(self):
        return len(self.samples) // self.channels

    def channel(self, number):
        return self.samples[number :: self.channels]


def correlation(first, second):
    length = min(len(first), len(second))
    first, second = first[:length], second[:length]
    norm = math.sqrt(sum(map(operator.mul, first, first)) * sum(map(operator.mul, second, second)))
    return sum(map(operator.mul, first, second)) / norm if norm else 0.0


def best_correlation(first, second, most_lag):
    """The highest correlation with either sound shifted by up to most_lag samples."""
    probe = range(0, most_lag + 1)
    return max(
        max(correlation(first[lag:], second) for lag in probe),
        max(correlation(first, second[lag:]) for lag in probe),
    )


class Card:
    """A virtual sound card; see tests/support/vcard/card_folder.h for what it can be told."""

    def __init__(self, number=0):
        self.folder = os.path.join(os.environ["LECTORA_VCARD"], f"card{number}")
        os.makedirs(self.folder, exist_ok=True)
        self.seen = len(self.streams())

    def tell(self, *lines):
        """Replaces what the card is told, as "rates 48000", "fault vanish 9000"."""
        fresh = os.path.join(self.folder, "settings.new")
        with open(fresh, "w") as file:
            file.write("\n".join(("name Virtual Card A", "element Master 0 87", *lines)) + "\n")
        os.replace(fresh, os.path.join(self.folder, "settings"))
        try:
            os.unlink(os.path.join(self.folder, "gone"))
        except FileNotFoundError:
            pass

    def streams(self):
        return sorted(name[:-4] for name in os.listdir(self.folder) if name.endswith(".wav"))

    def next_stream(self, seconds=PATIENCE):
        """The name of the next stream that the test has not asked for yet."""
        wait_until(lambda: len(self.streams()) > self.seen, "a stream at the card", seconds)
        self.seen += 1
        stream = self.streams()[self.seen - 1]
        wait_until(lambda: self.events(stream), "the stream's first event", seconds)
        return stream

    def events(self, stream):
        """(monotonic seconds, event, frames received, frames played, more) of each log line."""
        with open(os.path.join(self.folder, stream + ".log")) as file:
            rows = [line.split() for line in file]
        return [
            (int(row[0]) / 1e6, row[1], int(row[2]), int(row[3]), [int(word) for word in row[4:]])
            for row in rows
        ]

    def wait_for(self, stream, event, seconds=PATIENCE):
        return wait_until(
            lambda: [row for row in self.events(stream) if row[1] == event],
            f"'{event}' at the card",
            seconds,
        )[0]

    def sound(self, stream):
        return Sound(os.path.join(self.folder, stream + ".wav"))
