#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "moktex/operations/conversion.h"

namespace moktextool {

/// An operation of `moktex convert` and the value of its option; empty for an option without one.
struct GivenOperation {
    const OperationOption* option;
    std::string value;
};

struct ConvertArguments {
    std::vector<std::string> paths;                      ///< the inputs; also the output, last, where `output` is empty
    std::string output;                                  ///< a file, or a folder for several inputs; "": the last of `paths`
    std::optional<std::string> format, quality, resize;  ///< as given, not parsed yet
    std::vector<GivenOperation> operations;              ///< in the order of the command line
    std::optional<std::uint32_t> level, layer, face;     ///< the image to write as a picture
    bool overwrite = false, quiet = false;
    ConversionRequest request;  ///< all other options
};

struct InfoArguments {
    std::vector<std::string> files;
    bool json = false;
};

struct CompareArguments {
    std::string a, b;
    bool levels = false, json = false;
    std::optional<double> minPSNR;
};

struct FormatsArguments {
    bool json = false, api = false;
};

/// @name The subcommands. Each prints its result on `console.out`; a Failure ends it.
/// @{

/// Converts each input, also after one has failed; the status is that of the first failure.
ExitStatus runConvert(ConvertArguments arguments, Console& console);
/// Describes each file, also after one has failed; the status is that of the first failure.
ExitStatus runInfo(const InfoArguments& arguments, Console& console);
ExitStatus runCompare(const CompareArguments& arguments, Console& console);
ExitStatus runFormats(const FormatsArguments& arguments, Console& console);
/// @}

}  // namespace moktextool
