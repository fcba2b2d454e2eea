#!/usr/bin/env python3
"""Times matRobustLineFit next to robust line fits of SciPy, and of scikit-learn where it is installed.

    robust_line_peer.py [--library PATH] [--counts N,N,...] [--repetitions R]

The same clouds go to all: y = 0.3 x + 5 with noise of 0.05 and a share of far outliers on one side. Shown are the
median time of a fit and the largest error of its slope over the clouds.

Theil-Sen takes the median over all pairs of points, so its time and memory grow with the square of their number;
it is left out where the slopes would not fit into a gigabyte. So does Siegel's, which is left out beyond 2000
points for its time.

Exit status: 0 done, 1 the library, NumPy or SciPy is missing, 3 the library was slower than a peer.
"""
import argparse
import ctypes
import os
import statistics
import sys
import time

TRUE_SLOPE = 0.3
THEIL_SEN_MOST = 15000
SIEGEL_MOST = 2000
SHARES = (0.0, 0.2, 0.4)


def load_library(path):
    library = ctypes.CDLL(path)
    double_pointer = ctypes.POINTER(ctypes.c_double)
    fit = library.matRobustLineFit
    fit.restype = ctypes.c_int
    fit.argtypes = [double_pointer, double_pointer, ctypes.c_uint, double_pointer, double_pointer,
                    ctypes.POINTER(ctypes.c_int)]
    slope = ctypes.c_double()
    intercept = ctypes.c_double()
    y_of_x = ctypes.c_int()

    def robust_fit(x, y):
        done = fit(x.ctypes.data_as(double_pointer), y.ctypes.data_as(double_pointer), len(x), ctypes.byref(slope),
                   ctypes.byref(intercept), ctypes.byref(y_of_x))
        if done != 1:
            raise RuntimeError("matRobustLineFit failed")
        return slope.value if y_of_x.value else 1.0 / slope.value

    return robust_fit


def cloud(numpy, count, share, seed):
    random = numpy.random.default_rng(seed)
    x = random.uniform(-100.0, 100.0, count)
    y = TRUE_SLOPE * x + 5.0 + random.normal(0.0, 0.05, count)
    outliers = random.permutation(count)[:int(share * count)]
    y[outliers] += random.uniform(10.0, 60.0, len(outliers))
    return x, y


def timed(fit, clouds, repetitions):
    """Median seconds of a fit, and the largest error of a slope."""
    error = max(abs(fit(x, y) - TRUE_SLOPE) for x, y in clouds)
    seconds = []
    for _ in range(repetitions):
        for x, y in clouds:
            start = time.perf_counter()
            fit(x, y)
            seconds.append(time.perf_counter() - start)
    return statistics.median(seconds), error


def peers():
    """Name, most points and function of each peer that is installed."""
    from scipy import stats
    yield "scipy theilslopes", THEIL_SEN_MOST, lambda x, y: stats.theilslopes(y, x)[0]
    yield "scipy siegelslopes", SIEGEL_MOST, lambda x, y: stats.siegelslopes(y, x)[0]
    try:
        from sklearn import linear_model
    except ImportError:
        print("scikit-learn is not installed: Huber and RANSAC are left out")
        return
    yield "sklearn Huber", 10**7, lambda x, y: linear_model.HuberRegressor().fit(x[:, None], y).coef_[0]
    yield "sklearn RANSAC", 10**7, lambda x, y: linear_model.RANSACRegressor(random_state=1).fit(
        x[:, None], y).estimator_.coef_[0]


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--library", default=os.path.join(here, "..", "..", "build", "release", "libVELQUAD.so"))
    parser.add_argument("--counts", default="100,1000,4000,1000000")
    parser.add_argument("--repetitions", type=int, default=3)
    arguments = parser.parse_args()
    try:
        import numpy
        robust_fit = load_library(arguments.library)
        others = list(peers())
    except (ImportError, OSError) as error:
        print(f"robust_line_peer.py: {error}", file=sys.stderr)
        return 1

    is_ahead = True
    print(f"{'points':>8}  {'fit':<20} {'ms':>10} {'ratio':>8} {'slope error':>12}")
    for count in (int(word) for word in arguments.counts.split(",")):
        clouds = [cloud(numpy, count, share, 7 + i) for i, share in enumerate(SHARES)]
        own, error = timed(robust_fit, clouds, arguments.repetitions)
        print(f"{count:8}  {'matRobustLineFit':<20} {own * 1e3:10.3f} {1:8.1f} {error:12.2e}")
        for name, most, fit in others:
            if count > most:
                continue
            seconds, error = timed(fit, clouds, arguments.repetitions)
            is_ahead = is_ahead and own <= seconds
            print(f"{count:8}  {name:<20} {seconds * 1e3:10.3f} {seconds / own:8.1f} {error:12.2e}")
    return 0 if is_ahead else 3


if __name__ == "__main__":
    sys.exit(main())
