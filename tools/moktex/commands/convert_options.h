#pragma once

#include "moktex/commands/Command.h"
#include "moktex/commands/commands.h"

namespace moktextool {

/// `moktex convert` with its options, which fill `arguments`; these must live as long as the command.
Command convertCommand(ConvertArguments& arguments);

}  // namespace moktextool
