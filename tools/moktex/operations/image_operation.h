#pragma once

#include <memory>
#include <span>
#include <string>
#include <utility>

#include "moktex/operations/band_operation.h"
#include "moktex/operations/block_size_rule.h"
#include "moktex/operations/resample.h"
#include "moktex/report/console.h"

namespace moktextool {

/// The properties that a texture will have before or after an operation.
struct PlannedTexture {
    const std::string& name;
    Console& console;
    PlannedSize size;
    double
        unit;  ///< the largest channel value as the user writes it: 255 up to 8 bits, 65535 up to 16, 1 for wider and for floats
    EMOKTColourSpace colourSpace;
    bool isPremultiplied;
    bool hasBorder;
    bool hasMadeLevels = false;  ///< --mipmaps made the levels; they are not those of the input
    bool holdsNormals = false;
};

struct OperationContext {
    double unit;  ///< as in PlannedTexture, before the operation
    ResampleSettings mipSettings;
    const Workplace& place;
};

/// One operation of `moktex convert` with its parameters.
class ImageOperation {
public:
    explicit ImageOperation(std::string givenText) : text(std::move(givenText)) {}
    virtual ~ImageOperation() = default;
    ImageOperation(const ImageOperation&) = delete;
    ImageOperation& operator=(const ImageOperation&) = delete;

    /// Updates the plan to the state after the operation. Throws a Failure if the operation would damage the texture or do
    /// nothing.
    virtual void plan(PlannedTexture& texture) const = 0;
    /// Turns the size after the operation into the size needed before it; false if there is none.
    virtual bool undoSize(PlannedSize&) const { return true; }
    virtual bool isMipmaps() const { return false; }
    /// Applies the operation to images in RGBA8, RGBA16 or float RGBA.
    virtual void apply(ImageSet& images, const OperationContext& context) const = 0;

    const std::string text;  ///< as on the command line, "--flip x"

protected:
    [[noreturn]] void refuse(const PlannedTexture& texture, ExitStatus status, const std::string& why) const {
        throw Failure(status, texture.name, text + ": " + why);
    }
};

using OperationPointer = std::unique_ptr<const ImageOperation>;

/// An option of `moktex convert` for an operation.
struct OperationOption {
    const char* names;    ///< separated by commas
    const char* operand;  ///< the value in the help; null for an option without one
    const char* help;
    const char* example;
    OperationPointer (*parse)(const std::string& text, const std::string& value);  ///< `text`: option and value together
};
std::span<const OperationOption> operationOptions();
/// The first of an option's names that has two dashes.
std::string longName(const OperationOption& option);
/// The help text of all options, each with an example.
std::string operationHelp();

/// A number of 1 to 65536, or 0 for anything else.
std::uint32_t parseEdge(const std::string& text);

/// @name Each creates the operation of an option from its value. Throws a Failure for invalid values.
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
