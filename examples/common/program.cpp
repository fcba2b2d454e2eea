#include "program.h"

#include <exception>
#include <iostream>
#include <new>
#include <system_error>

namespace examples {

const std::string& CommandLine::value() {
    if (atEnd()) throw UsageError(arguments_.back() + " needs a value");
    return next();
}

void takePicture(const std::string& argument, std::string& picture) {
    if (argument.rfind('-', 0) == 0) throw UsageError("unknown option " + argument + " (see --help)");
    if (!picture.empty()) throw UsageError("more than one picture given (see --help)");
    if (argument.empty()) throw UsageError("the name of the picture is empty");
    picture = argument;
}

std::filesystem::path makeDirectory(const std::string& name) {
    const std::filesystem::path directory(name);
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error) throw Failure("cannot make the directory '" + name + "': " + error.message());
    return directory;
}

int runProgram(const char* name, const std::function<void()>& work) {
    constexpr int kFailed = 1;
    constexpr int kWrongUsage = 2;
    try {
        work();
        return 0;
    } catch (const UsageError& error) {
        std::cerr << name << ": " << error.what() << '\n';
        return kWrongUsage;
    } catch (const std::bad_alloc&) {
        std::cerr << name << ": not enough memory\n";
    } catch (const std::exception& error) {
        std::cerr << name << ": " << error.what() << '\n';
    }
    return kFailed;
}

}  // namespace examples
