/// @file
/// What the programs share around their work: command line, output directory, exit status.
#ifndef EXAMPLES_PROGRAM_H
#define EXAMPLES_PROGRAM_H

#include <cstddef>
#include <filesystem>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

#include "image.h"

namespace examples {

/// Wrong options: the program ends with status 2.
class UsageError : public Failure {
  public:
    using Failure::Failure;
};

/// The arguments of a program, one after the other.
class CommandLine {
  public:
    CommandLine(int argc, char** argv) : arguments_(argv + 1, argv + argc) {}

    bool atEnd() const { return next_ == arguments_.size(); }
    const std::string& next() { return arguments_[next_++]; }
    /// The value of the option that was taken last. @throws UsageError at the end.
    const std::string& value();

  private:
    std::vector<std::string> arguments_;
    std::size_t next_ = 0;
};

/// Takes an argument that is none of the program's options as the name of the picture.
/// @throws UsageError for an unknown option, an empty name and a second picture.
void takePicture(const std::string& argument, std::string& picture);

/// Makes the directory that a program writes to. @throws Failure when that cannot be done.
std::filesystem::path makeDirectory(const std::string& name);

/// Does the work of a program. What it throws becomes one line on standard error.
/// @return the exit status: 0 done, 1 failed, 2 wrong usage.
int runProgram(const char* name, const std::function<void()>& work);

/// The same for a program with options: `run(parse(command line))`, or `usage` when the options ask for help.
template <class Parse, class Run>
int runProgram(const char* name, const char* usage, CommandLine line, Parse parse, Run run) {
    return runProgram(name, [&] {
        const auto options = parse(line);
        if (options.help) {
            std::cout << usage;
        } else {
            run(options);
        }
    });
}

}  // namespace examples

#endif  // EXAMPLES_PROGRAM_H
