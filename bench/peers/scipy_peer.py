#!/usr/bin/env python3
"""Times signals, images and volumes of the library next to SciPy's.

    scipy_peer.py [--library PATH] [--only NAME] [--repetitions R]

Both sides get the same NumPy arrays and make a new array for their result, all in one thread. Shown are the medians
of processor time, how often slower the peer was, and the largest difference of the results where both have the same
definition: for transforms that of the signal that comes back, for filters that within the border.

Exit status: 0 done, 1 the library, NumPy or SciPy is missing, 3 the library was slower than a peer.
"""
import argparse
import ctypes
import math
import os
import statistics
import sys
import time

SHORTEST_SAMPLE = 0.01
BLUR_SIGMA = 2.0
BLUR_RADIUS = 8
VOLUME_SIZE = 256
ZOOM_FLAGS = {0: 1, 1: 2, 3: 4}
TYPE_CODES = {"uint8": 2, "uint16": 4, "float32": 7}
BLUR_SYMBOL = "_Z23matGaussianBlurFilter3vPPPvPjjjS2_PdS3_iPFijjS_ES_"


class Library:
    """The exported functions, from arrays to new arrays."""

    def __init__(self, path, numpy):
        self.numpy = numpy
        self.module = ctypes.CDLL(path)
        pointer, unsigned = ctypes.c_void_p, ctypes.c_uint
        self.declare("matFFT", [pointer, unsigned, pointer, pointer])
        self.declare("matInvFFT", [pointer, pointer, unsigned, pointer])
        self.declare("matSavitzkyGolay", [pointer, unsigned, pointer, unsigned, unsigned, ctypes.c_int])
        self.declare("matZoomArray2v", [unsigned, unsigned, pointer, unsigned, unsigned, pointer, unsigned, unsigned])
        volume = [unsigned, unsigned, unsigned, pointer]
        self.declare("matAffinTransformArray3v", volume + volume + [unsigned, pointer, unsigned])
        self.declare(BLUR_SYMBOL, [pointer, pointer, unsigned, unsigned, pointer, pointer, pointer, ctypes.c_int,
                                   pointer, pointer])

    def declare(self, name, arguments):
        function = getattr(self.module, name)
        function.restype = ctypes.c_uint
        function.argtypes = arguments

    def round_trip(self, signal):
        real, imaginary, back = (self.numpy.empty_like(signal) for _ in range(3))
        spectrum = real.ctypes.data, imaginary.ctypes.data
        expect(0, self.module.matFFT(signal.ctypes.data, len(signal), *spectrum))
        expect(0, self.module.matInvFFT(*spectrum, len(signal), back.ctypes.data))
        return back

    def savitzky_golay(self, signal, window, derivative):
        out = self.numpy.empty_like(signal)
        expect(0, self.module.matSavitzkyGolay(signal.ctypes.data, len(signal), out.ctypes.data, (window - 3) // 2,
                                               derivative, 0))
        return out

    def row_table(self, array):
        """Addresses of all rows, for volumes slice after slice."""
        rows = array.size // array.shape[-1]
        return array.ctypes.data + self.numpy.arange(rows, dtype=self.numpy.uintp) * array.strides[-2]

    def slice_table(self, rows, volume):
        return rows.ctypes.data + self.numpy.arange(len(volume), dtype=self.numpy.uintp) * (8 * volume.shape[1])

    def zoom(self, image, size, order):
        out = self.numpy.empty((size, size), image.dtype)
        source, destination = self.row_table(image), self.row_table(out)
        expect(1, self.module.matZoomArray2v(image.shape[1], image.shape[0], source.ctypes.data, size, size,
                                             destination.ctypes.data, TYPE_CODES[image.dtype.name], ZOOM_FLAGS[order]))
        return out

    def affine(self, volume, matrix, order):
        out = self.numpy.empty_like(volume)
        source, destination = self.row_table(volume), self.row_table(out)
        source_slices, slices = self.slice_table(source, volume), self.slice_table(destination, out)
        depth, height, width = volume.shape
        expect(1, self.module.matAffinTransformArray3v(
            width, height, depth, source_slices.ctypes.data, width, height, depth, slices.ctypes.data,
            TYPE_CODES[volume.dtype.name], matrix.ctypes.data, 1 - order))
        return out

    def blur(self, volume):
        out = volume.copy()
        rows = self.row_table(out)
        slices = self.slice_table(rows, out)
        size = (ctypes.c_uint * 3)(*reversed(volume.shape))
        sigma = (ctypes.c_double * 3)(*(BLUR_SIGMA,) * 3)
        factor = (ctypes.c_double * 3)(*(BLUR_RADIUS / BLUR_SIGMA,) * 3)
        expect(1, self.module[BLUR_SYMBOL](slices.ctypes.data, size, TYPE_CODES[volume.dtype.name], 1, None, sigma,
                                           factor, 1, None, None))
        return out


def expect(status, result):
    if result != status:
        raise RuntimeError(f"the library failed with {result}")


def seconds_of(work, count):
    start = time.process_time()
    for _ in range(count):
        work()
    return (time.process_time() - start) / count


def medians(first, second, repetitions):
    """Both in turn, so that a slow moment of the machine meets both."""
    counts = [max(1, math.ceil(SHORTEST_SAMPLE / max(seconds_of(work, 1), 1e-7))) for work in (first, second)]
    times = [[seconds_of(work, count) for work, count in zip((first, second), counts)] for _ in range(repetitions)]
    return [statistics.median(column) for column in zip(*times)]


def inner(array, border):
    return array[(slice(border, -border),) * array.ndim] if border else array


def signal_cases(numpy, library):
    from scipy import fft, signal as filters
    random = numpy.random.default_rng(1)
    for n in (1 << 10, 1 << 16, 1 << 20):
        samples = random.uniform(-1.0, 1.0, n)
        own = lambda samples=samples: library.round_trip(samples)
        yield f"fft 2^{n.bit_length() - 1}, complex", own, lambda samples=samples: fft.ifft(fft.fft(samples)).real, 0
        yield f"fft 2^{n.bit_length() - 1}, real", own, lambda samples=samples: fft.irfft(fft.rfft(samples)), 0
    curve = numpy.cumsum(random.normal(0.0, 1.0, 10**6))
    for derivative in (0, 1, 2):
        for window in (5, 7, 9, 11, 13):
            yield (f"savitzky-golay {window}, derivative {derivative}",
                   lambda w=window, d=derivative: library.savitzky_golay(curve, w, d),
                   lambda w=window, d=derivative: filters.savgol_filter(curve, w, 2, deriv=d, mode="nearest"), window)


def ramp_with_noise(numpy, shape, dtype):
    count = math.prod(shape)
    noise = numpy.random.default_rng(11).integers(0, 64, count)
    return (numpy.arange(count) // 64 % 192 + noise).astype(dtype).reshape(shape)


def zoom_cases(numpy, library):
    from scipy import ndimage
    for dtype in ("uint8", "float32"):
        for size, new_size in ((2048, 4096), (4096, 1500)):
            image = ramp_with_noise(numpy, (size, size), dtype)
            for order in (0, 1, 3):
                yield (f"zoom {size} to {new_size}, {dtype}, order {order}",
                       lambda i=image, s=new_size, o=order: library.zoom(i, s, o),
                       lambda i=image, s=new_size, o=order: ndimage.zoom(i, s / len(i), order=o), None)


def turn_about_centre(numpy):
    c, s = math.cos(0.5), math.sin(0.5)
    matrix = numpy.eye(4)
    matrix[:3, :3] = [[c, -s * c, s * s], [s, c * c, -c * s], [0.0, s, c]]
    centre = numpy.full(3, 0.5 * VOLUME_SIZE)
    matrix[:3, 3] = centre - matrix[:3, :3] @ centre
    return matrix


def volume_cases(numpy, library):
    from scipy import ndimage
    matrix = turn_about_centre(numpy)
    # SciPy maps the other way round, and z comes first.
    inverse = numpy.linalg.inv(matrix)
    turned, shift = inverse[2::-1, 2::-1], inverse[2::-1, 3]
    for dtype in ("uint8", "float32"):
        volume = ramp_with_noise(numpy, (VOLUME_SIZE,) * 3, dtype)
        for order in (0, 1):
            yield (f"affine, {dtype}, order {order}", lambda v=volume, o=order: library.affine(v, matrix, o),
                   lambda v=volume, o=order: ndimage.affine_transform(v, turned, shift, order=o, prefilter=False),
                   None)
        yield (f"blur, {dtype}", lambda v=volume: library.blur(v),
               lambda v=volume: ndimage.gaussian_filter(v, BLUR_SIGMA, mode="nearest",
                                                        truncate=BLUR_RADIUS / BLUR_SIGMA), 3 * BLUR_RADIUS)


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--library", default=os.path.join(here, "..", "..", "build", "release", "libVELQUAD.so"))
    parser.add_argument("--only", default="", help="cases whose names begin so")
    parser.add_argument("--repetitions", type=int, default=5)
    arguments = parser.parse_args()
    try:
        import numpy
        import scipy
        library = Library(arguments.library, numpy)
    except (ImportError, OSError) as error:
        print(f"scipy_peer.py: {error}", file=sys.stderr)
        return 1

    is_ahead = True
    print(f"SciPy {scipy.__version__}, NumPy {numpy.__version__}")
    print(f"{'case':<36} {'own ms':>10} {'SciPy ms':>10} {'ratio':>7} {'difference':>11}")
    for cases in (signal_cases, zoom_cases, volume_cases):
        for name, own, peer, border in cases(numpy, library):
            if not name.startswith(arguments.only):
                continue
            difference = math.nan
            if border is not None:
                difference = numpy.abs(inner(own(), border).astype(float) - inner(peer(), border)).max()
            own_seconds, peer_seconds = medians(own, peer, arguments.repetitions)
            is_ahead = is_ahead and own_seconds <= peer_seconds
            print(f"{name:<36} {own_seconds * 1e3:10.3f} {peer_seconds * 1e3:10.3f} "
                  f"{peer_seconds / own_seconds:7.2f} {difference:11.1e}", flush=True)
    return 0 if is_ahead else 3


if __name__ == "__main__":
    sys.exit(main())
