"""Pixels of a canvas, and where a scene must be in them."""

import base64
import collections
import math

import numpy

Ball = collections.namedtuple("Ball", "centre radius colour")
Arrow = collections.namedtuple("Arrow", "tail tip colour")

READ_CANVAS = """
    const canvas = document.getElementById(arguments[0]);
    const { data } = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height);
    let text = '';
    for (let k = 0; k < data.length; k += 30000)
      text += String.fromCharCode(...data.subarray(k, k + 30000));
    return [canvas.width, canvas.height, btoa(text)];"""

READ_PNG = """
    const [text, done] = arguments;
    const image = new Image();
    image.onerror = () => done(null);
    image.onload = () => {
      const canvas = document.createElement('canvas');
      canvas.width = image.width;
      canvas.height = image.height;
      canvas.getContext('2d').drawImage(image, 0, 0);
      canvas.id = 'read-png';
      document.body.append(canvas);
      done(true);
    };
    image.src = 'data:image/png;base64,' + text;"""


def canvas_pixels(browser, name):
    """[row][column][red, green, blue] from 0 to 255, of a canvas at one dot a pixel."""
    width, height, text = browser.execute_script(READ_CANVAS, name)
    dots = numpy.frombuffer(base64.b64decode(text), dtype=numpy.uint8)
    return dots.reshape(height, width, 4)[:, :, :3].astype(int)


def png_pixels(browser, png):
    """As the browser reads a PNG; None where it does not. It leaves the page."""
    browser.get("about:blank")
    if not browser.execute_async_script(READ_PNG, base64.b64encode(png).decode()):
        return None
    return canvas_pixels(browser, "read-png")


def box_of(pixels):
    """left, top, right, bottom of what differs from the colour of the corner."""
    drawn = numpy.abs(pixels - pixels[0, 0]).max(axis=2) > 8
    if not drawn.any():
        raise AssertionError("nothing is drawn")
    columns, rows = numpy.flatnonzero(drawn.any(axis=0)), numpy.flatnonzero(drawn.any(axis=1))
    return columns[0], rows[0], columns[-1] + 1, rows[-1] + 1


def rgb(text):
    return tuple(int(text[k:k + 2], 16) for k in (1, 3, 5))


# --- scenes ---------------------------------------------------------------------------------------


def scene_of(bild):
    """Balls and arrows of a .bild file, as it was before the turn to the screen, Angstrom."""
    balls, arrows, colour = [], [], None
    for line in bild.splitlines():
        word, *rest = line.split()
        if word == ".color":
            colour = tuple(map(float, rest))
        elif word == ".sphere":
            balls.append(Ball(numpy.array(rest[:3], float), float(rest[3]), colour))
        elif word == ".arrow":
            arrows.append(Arrow(numpy.array(rest[:3], float), numpy.array(rest[3:6], float), colour))
    return balls, arrows


def view_matrix(azimuth, elevation):
    """Rows: to the right, upwards, towards who looks; the azimuth counts from X towards Y, degrees."""
    a, e = math.radians(azimuth), math.radians(elevation)
    towards = numpy.array([math.cos(e) * math.cos(a), math.cos(e) * math.sin(a), math.sin(e)])
    right = numpy.array([-math.sin(a), math.cos(a), 0])
    return numpy.array([right, numpy.cross(towards, right), towards])


class Sight:
    """Where points are in a picture in which balls, and nothing else, reach from `box` to `box`.

    The picture is flat and its lengths are equal in both directions, so scale and middle follow from the
    outermost balls.
    """

    def __init__(self, balls, view, box):
        self.matrix = view_matrix(*view)
        self.balls = balls
        flat = numpy.array([self.matrix @ ball.centre for ball in balls])
        radii = numpy.array([ball.radius for ball in balls])
        low, high = (flat[:, :2].T - radii).min(axis=1), (flat[:, :2].T + radii).max(axis=1)
        left, top, right, bottom = box
        self.scale = (right - left) / (high[0] - low[0])
        self.scale_upwards = (bottom - top) / (high[1] - low[1])
        middle = (low + high) / 2
        self.origin = numpy.array([(left + right) / 2 - self.scale * middle[0],
                                   (top + bottom) / 2 + self.scale * middle[1]])

    def pixel(self, point):
        right, up, _ = self.matrix @ point
        return self.origin + self.scale * numpy.array([right, -up])

    def covering(self, point, margin):
        """Balls nearer to who looks than a point, in its place or at most `margin` pixels away."""
        depth = self.matrix[2] @ point
        return [ball for ball in self.balls
                if self.matrix[2] @ ball.centre > depth + 1e-6 and
                numpy.linalg.norm(self.pixel(ball.centre) - self.pixel(point)) <
                self.scale * ball.radius + margin]


def around(pixels, place, radius):
    """Mean colour of the pixels around a place."""
    x, y = (int(math.floor(value)) for value in place)
    return pixels[y - radius:y + radius + 1, x - radius:x + radius + 1].reshape(-1, 3).mean(axis=0)
