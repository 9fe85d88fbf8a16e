#pragma once

#include <memory>
#include <span>
#include <string>

#include "moktex/operations/image_operation.h"

namespace moktextool {

using OperationPointer = std::unique_ptr<const ImageOperation>;

/// An option of `moktex convert` that stands for an operation.
struct OperationOption {
    const char* names;    ///< as the command line takes them, the chief one first
    const char* operand;  ///< what the help shows for the value; null for an option without one
    const char* help;
    const char* example;
    OperationPointer (*parse)(const std::string& text, const std::string& value);  ///< `text`: option and value together
};
std::span<const OperationOption> operationOptions();
/// The first of an option's names that has two dashes.
std::string chiefName(const OperationOption& option);
/// All options, each with its explanation and its example.
std::string operationHelp();

/// A number of 1 to 65536, or 0 for anything else.
std::uint32_t parseEdge(const std::string& text);

/// @name Each makes an operation of its option's value. A Failure for values that mean nothing.
/// @{
OperationPointer parseMipmaps(const std::string& text, const std::string& value);
OperationPointer parseColourMips(const std::string& text, const std::string& value);
OperationPointer parsePremultiply(const std::string& text, const std::string& value);
OperationPointer parseBleed(const std::string& text, const std::string& value);
OperationPointer parseFlip(const std::string& text, const std::string& value);
OperationPointer parseRotate90(const std::string& text, const std::string& value);
OperationPointer parseBorder(const std::string& text, const std::string& value);
OperationPointer parseNormalMap(const std::string& text, const std::string& value);
OperationPointer parseSetChannel(const std::string& text, const std::string& value);
OperationPointer parseSwizzle(const std::string& text, const std::string& value);
/// @}

}  // namespace moktextool
