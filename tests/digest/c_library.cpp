// Measures how far the C library's functions behind frame/math.h are from the nearest double, the only reason why
// results may differ between systems, and checks that it is no farther than known.
//     c_library <table>
// The table holds lines of function, two arguments and the nearest double to the exact value, as hexadecimal
// floating-point numbers. It was computed with 200 bits of precision.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

#include "frame/math.h"

namespace {

namespace frame = velquad::frame;

struct Function {
    double (*call)(double x, double y);
    double limit;     ///< Largest difference known of any system.
    bool isAbsolute;  ///< Compared as a plain difference, not in units in the last place.
};

const std::map<std::string, Function> kFunctions{
    {"sin", {[](double x, double) { return frame::sin(x); }, 4.0, false}},
    {"cos", {[](double x, double) { return frame::cos(x); }, 4.0, false}},
    {"tan", {[](double x, double) { return frame::tan(x); }, 1.0, false}},
    // Multiples of a quarter turn, where sine and cosine cancel to nearly nothing.
    {"sin-at-turns", {[](double x, double) { return frame::sin(x); }, 4e-20, true}},
    {"cos-at-turns", {[](double x, double) { return frame::cos(x); }, 4e-20, true}},
    {"acos", {[](double x, double) { return frame::acos(x); }, 1.0, false}},
    {"atan", {[](double x, double) { return frame::atan(x); }, 1.0, false}},
    {"atan2", {[](double x, double y) { return frame::atan2(x, y); }, 1.0, false}},
    {"exp", {[](double x, double) { return frame::exp(x); }, 1.0, false}},
    {"log", {[](double x, double) { return frame::log(x); }, 1.0, false}},
    {"log10", {[](double x, double) { return frame::log10(x); }, 1.0, false}},
    {"pow", {[](double x, double y) { return frame::pow(x, y); }, 1.0, false}},
    // Whole exponents are multiplied out by some libraries: 31 units for exponents up to 40, 282 up to 308.
    {"pow-of-ten", {[](double x, double y) { return frame::pow(x, y); }, 300.0, false}},
    {"hypot", {[](double x, double y) { return frame::hypot(x, y); }, 1.0, false}},
};

/// Position among all doubles in ascending order, so that neighbours differ by 1.
std::int64_t rankOf(double value) {
    std::int64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    constexpr std::int64_t kSmallest = INT64_MIN;
    return bits < 0 ? kSmallest - bits : bits;
}

double differenceOf(const Function& function, double actual, double expected) {
    if (function.isAbsolute) return std::fabs(actual - expected);
    return std::fabs(static_cast<double>(rankOf(actual) - rankOf(expected)));
}

struct Finding {
    double largest = 0.0;
    int count = 0;
    int inexact = 0;
};

}  // namespace

int main(int argc, char** argv) {
    std::FILE* table = argc == 2 ? std::fopen(argv[1], "r") : nullptr;
    if (table == nullptr) return 2;
    std::map<std::string, Finding> findings;
    char line[200], name[40], numbers[3][60];
    while (std::fgets(line, sizeof line, table) != nullptr) {
        if (line[0] == '#') continue;
        if (std::sscanf(line, "%39s %59s %59s %59s", name, numbers[0], numbers[1], numbers[2]) != 4) return 2;
        const Function& function = kFunctions.at(name);
        const double expected = std::strtod(numbers[2], nullptr);
        const double actual =
            function.call(std::strtod(numbers[0], nullptr), std::strtod(numbers[1], nullptr));
        const double difference = differenceOf(function, actual, expected);
        Finding& finding = findings[name];
        ++finding.count;
        if (!(difference == 0.0)) ++finding.inexact;
        if (!(difference <= finding.largest)) finding.largest = difference;
    }
    std::fclose(table);
    bool isRight = findings.size() == kFunctions.size();
    for (const auto& [key, finding] : findings) {
        const Function& function = kFunctions.at(key);
        const bool isWithin = finding.largest <= function.limit;
        std::printf("%-13s %4d of %4d not the nearest; largest difference %g%s, known %g%s\n", key.c_str(),
                    finding.inexact, finding.count, finding.largest, function.isAbsolute ? "" : " ulp",
                    function.limit, isWithin ? "" : " EXCEEDED");
        isRight = isRight && isWithin;
    }
    return isRight ? 0 : 1;
}
