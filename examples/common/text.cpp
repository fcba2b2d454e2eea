#include "text.h"

#include <cstdio>
#include <fstream>
#include <iomanip>
#include <locale>

namespace examples {
namespace {

constexpr const char* kStyle = R"(
body { font: 15px/1.5 system-ui, sans-serif; color: #1d232a; background: #f4f5f7; margin: 2rem auto; max-width: 1200px; padding: 0 1rem; }
h1 { font-size: 1.6rem; margin-bottom: 0; } h2 { font-size: 1.15rem; margin: 2rem 0 .5rem; }
figure { margin: 0; } figcaption { color: #55606c; font-size: .9rem; margin: .4rem 0; }
img, svg { display: block; width: 100%; background: #fff; border: 1px solid #d5d9de; }
.histogram { height: 110px; max-width: 640px; }
.detail { max-width: 760px; }
.key span { display: inline-block; width: 1.6em; height: .35em; margin: 0 .4em .15em 1em; }
.table { overflow-x: auto; } table { border-collapse: collapse; background: #fff; font-variant-numeric: tabular-nums; font-size: .85rem; }
th, td { border: 1px solid #d5d9de; padding: .25rem .5rem; text-align: right; white-space: nowrap; }
th { background: #e9ecef; white-space: normal; vertical-align: bottom; } tr:nth-child(even) td { background: #f8f9fa; }
)";

}  // namespace

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

std::string number(double value, int decimals) {
    std::ostringstream text = plainStream(decimals);
    text << value;
    return text.str();
}

std::string htmlColour(Rgb colour) {
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", colour.red, colour.green, colour.blue);
    return text;
}

std::string pageStart(const std::string& title) {
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta name=\"viewport\" content=\"width=device-width\">\n<title>" +
           escaped(title) + "</title>\n<style>" + kStyle + "</style>\n</head>\n<body>\n<h1>" +
           escaped(title) + "</h1>\n";
}

std::string csvOf(const Table& table) {
    std::string csv;
    const auto writeLine = [&csv](const auto& cells, const auto& textOf) {
        const char* separator = "";
        for (const auto& cell : cells) {
            csv += separator;
            csv += textOf(cell);
            separator = ",";
        }
        csv += '\n';
    };
    writeLine(table.columns, [](const Column& column) { return column.key; });
    for (const std::vector<std::string>& row : table.rows)
        writeLine(row, [](const std::string& cell) { return cell; });
    return csv;
}

std::string htmlOf(const Table& table) {
    std::string html = "<div class=\"table\"><table>\n<tr>";
    for (const Column& column : table.columns)
        html += std::string("<th>") + column.heading + "</th>";
    html += "</tr>\n";
    for (const std::vector<std::string>& row : table.rows) {
        html += "<tr>";
        for (const std::string& cell : row)
            html += "<td>" + cell + "</td>";
        html += "</tr>\n";
    }
    return html + "</table></div>\n";
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
