#pragma once

#include <memory>
#include <span>
#include <string>
#include <utility>

#include "moktex/operations/block_size_rule.h"
#include "moktex/report/console.h"

namespace moktextool {

/// What a texture is to be at one point of its way through the operations.
struct PlannedTexture {
    const std::string& name;
    Console& console;
    PlannedSize size;
    double unit;  ///< a full channel as the user counts: 255 up to 8 bits, 65535 up to 16, 1 for wider and for floats
    EMOKTColourSpace colourSpace;
    bool isPremultiplied;
    bool hasBorder;
    bool hasMadeLevels = false;  ///< its levels are the work of an operation, not the input's own
    bool holdsNormals = false;
};

/// The forms of pixels that an operation takes.
enum class OperandFormat {
    any,    ///< each that the library operates on
    bytes,  ///< RGBA8
    exact,  ///< floats, as long as they fit, so that nothing is rounded on the way
};

struct OperationContext {
    double unit;  ///< as in PlannedTexture, before the operation
    moktexture::EResizeMode mipFilter;
};

/// One operation of `moktex convert`, as the command line asks for it.
class ImageOperation {
public:
    explicit ImageOperation(std::string givenText) : text(std::move(givenText)) {}
    virtual ~ImageOperation() = default;
    ImageOperation(const ImageOperation&) = delete;
    ImageOperation& operator=(const ImageOperation&) = delete;

    /// Brings the plan to what it is behind the operation. A Failure where the operation would spoil the texture or be of no use.
    virtual void plan(PlannedTexture& texture) const = 0;
    /// Makes a wanted width and height behind the operation those before it; false if there are none.
    virtual bool undoSize(PlannedSize&) const { return true; }
    virtual bool isMipmaps() const { return false; }
    virtual OperandFormat operandFormat() const { return OperandFormat::any; }
    /// Works on a texture in operandFormat(). False if the library refuses.
    virtual bool apply(moktexture::CMOKTexture& texture, const OperationContext& context) const = 0;

    const std::string text;  ///< as it was given, "--flip x"

protected:
    [[noreturn]] void refuse(const PlannedTexture& texture, ExitStatus status, const std::string& why) const {
        throw Failure(status, texture.name, text + ": " + why);
    }
};

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
std::string longName(const OperationOption& option);
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
