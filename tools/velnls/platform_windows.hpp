// What the Windows files of the command line share.
#pragma once

#include <string>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace velnls::tool::platform {

std::wstring widePath(const std::string &path);

// errno for the system's last error.
void setErrno();

// INVALID_HANDLE_VALUE and errno on failure.
HANDLE openHandleToRead(const std::string &path, DWORD flags);

} // namespace velnls::tool::platform
