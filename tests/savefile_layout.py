"""The layout of the save file "Fichier de sauvegarde", for every Python tool and test that
writes or reads one.

The content is 1142 bytes, little-endian: 99 signed 32-bit settings slots, then 60 records of
6 unsigned 16-bit counters (played, won, lost and three spare ones), then the player's name in
26 bytes (Windows-1252, ended by a zero when shorter). The file is written as a text stream:
on disk every 0x0A byte of the content is stored as 0x0D 0x0A.
"""

from __future__ import annotations

import struct
from dataclasses import dataclass, field

SETTINGS_SLOTS, STATS_RECORDS, COUNTERS, NAME_BYTES = 99, 60, 6, 26
CONTENT_BYTES = 4 * SETTINGS_SLOTS + 2 * COUNTERS * STATS_RECORDS + NAME_BYTES
PLAYED, WON, LOST = 0, 1, 2

# The settings slots that hold something, with what a first start without a save file holds.
INITIAL = {"BoardSize": 8, "ShowImages": 1, "Smoothing": 0, "Level": 0, "GameMode": 1,
           "CustomColours": 1, "AiNumber": 0, "Challenge": 0, "CharacterId": 0,
           "NormalTitle": 1, "AlwaysSquare": 1}
SLOT = {name: index for index, name in enumerate(INITIAL)}
DEFAULT_NAME = b"<Votre nom>"

_SETTINGS = struct.Struct(f"<{SETTINGS_SLOTS}i")
_COUNTERS = struct.Struct(f"<{STATS_RECORDS * COUNTERS}H")


@dataclass
class SaveFile:
    settings: list[int] = field(default_factory=lambda: [0] * SETTINGS_SLOTS)
    stats: list[list[int]] = field(
        default_factory=lambda: [[0] * COUNTERS for _ in range(STATS_RECORDS)])
    name: bytes = DEFAULT_NAME

    @classmethod
    def initial(cls, **settings: int) -> SaveFile:
        """What the program holds at a first start, with the named settings changed."""
        save = cls()
        for name, value in {**INITIAL, **settings}.items():
            save.settings[SLOT[name]] = value
        return save

    def setting(self, name: str) -> int:
        return self.settings[SLOT[name]]

    def content(self) -> bytes:
        counters = [c & 0xFFFF for record in self.stats for c in record]
        return (_SETTINGS.pack(*self.settings) + _COUNTERS.pack(*counters)
                + self.name[:NAME_BYTES].ljust(NAME_BYTES, b"\0"))

    def stored(self) -> bytes:
        return self.content().replace(b"\n", b"\r\n")

    @classmethod
    def from_content(cls, content: bytes) -> SaveFile:
        if len(content) != CONTENT_BYTES:
            raise ValueError(f"{len(content)} bytes of content, not {CONTENT_BYTES}")
        counters = _COUNTERS.unpack_from(content, _SETTINGS.size)
        return cls(list(_SETTINGS.unpack_from(content)),
                   [list(counters[r:r + COUNTERS]) for r in range(0, len(counters), COUNTERS)],
                   content[-NAME_BYTES:].split(b"\0", 1)[0])

    @classmethod
    def from_stored(cls, stored: bytes) -> SaveFile:
        return cls.from_content(stored.replace(b"\r\n", b"\n"))
