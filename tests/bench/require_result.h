#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>

namespace bench {

/// Raises std::runtime_error unless the result is 0.
inline void RequireResult(HRESULT result, const char* what) {
    if (result != S_OK) {
        throw std::runtime_error(std::string(what) + " gives " + std::to_string(result));
    }
}

}  // namespace bench
