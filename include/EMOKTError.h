#pragma once

/// Result of the container operations that can fail.
enum EMOKTError : unsigned int {
    eMOKTSuccess = 0,
    eMOKTFail = 1,
};
