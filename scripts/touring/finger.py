"""Fingers on a tablet: they move the touch screen that scripts/private-x-server gives its display."""
import os
import socket
import struct
import time

# Of the X server's driver "inputtest": messages begin with their length and kind.
VERSION, SYNC, TOUCH = 0, 1, 6
DOWN, MOVE, UP = 18, 19, 20
PARTS = 65536  # of the glass, in both directions


class TouchScreen:
    """The driver takes one connection in its life."""

    def __init__(self, folder, width, height):
        self.size = width, height
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect(os.path.join(folder, "touch"))
        self.socket.sendall(struct.pack("=IIHH", 12, VERSION, 1, 1))
        self.socket.recv(12)

    def touch(self, phase, x, y, finger=1):
        places = [x * PARTS / self.size[0], y * PARTS / self.size[1]]
        axes = struct.pack("=I8s4x128d", 0, bytes([0b11]), *places, *[0.0] * 126)
        self.socket.sendall(struct.pack("=IIII", 16 + len(axes), TOUCH, finger, phase) + axes)
        self.socket.sendall(struct.pack("=II", 8, SYNC))
        self.socket.recv(8)

    def drag(self, begin, end, steps=10):
        """One finger from a place to another, in small steps as a hand does: window managers look late where it began."""
        def between(step):
            return [first + (last - first) * step / steps for first, last in zip(begin, end)]
        self.touch(DOWN, *begin)
        for step in range(1, steps + 1):
            time.sleep(0.05)
            self.touch(MOVE, *between(step))
        self.touch(UP, *end)
