#include "text.h"

#include <cstdio>
#include <fstream>
#include <iomanip>
#include <locale>

#include "image.h"

namespace examples {

std::ostringstream plainStream(int decimals) {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << std::fixed << std::setprecision(decimals);
    return stream;
}

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        switch (c) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            case '"':
                result += "&quot;";
                break;
            default:
                result += c;
        }
    }
    return result;
}

void writeText(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    if (!file) throw Failure("cannot write '" + path + "'");
    file << text << std::flush;
    if (!file) {
        file.close();
        std::remove(path.c_str());
        throw Failure("cannot write '" + path + "'");
    }
}

}  // namespace examples
