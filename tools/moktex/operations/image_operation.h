#pragma once

#include <string>
#include <utility>

#include "moktex/operations/block_size_rule.h"
#include "moktex/report/exit_status.h"

namespace moktextool {

struct Console;

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
enum class OperandForm {
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
    virtual OperandForm operandForm() const { return OperandForm::any; }
    /// Works on a texture in operandForm(). False if the library refuses.
    virtual bool apply(moktexture::CMOKTexture& texture, const OperationContext& context) const = 0;

    const std::string text;  ///< as it was given, "--flip x"

protected:
    [[noreturn]] void refuse(const PlannedTexture& texture, ExitStatus status, const std::string& why) const {
        throw Failure(status, texture.name, text + ": " + why);
    }
};

}  // namespace moktextool
