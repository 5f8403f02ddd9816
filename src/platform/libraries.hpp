// What systems do differently about libraries that are loaded while the program runs: opening one, finding a
// name in it, how its file is called and where paths are taken apart.
#pragma once

namespace velnls::platform {

#if defined(_WIN32)
inline constexpr char kDirectorySeparator = '\\';
inline constexpr char kPathListSeparator = ';';
inline constexpr char kPathListQuote = '"';
inline constexpr char kLibraryEnding[] = ".dll";
#else
inline constexpr char kDirectorySeparator = '/';
inline constexpr char kPathListSeparator = ':';
inline constexpr char kPathListQuote = '\0'; // none: NUL stands in no list
#if defined(__APPLE__)
inline constexpr char kLibraryEnding[] = ".dylib";
#else
inline constexpr char kLibraryEnding[] = ".so";
#endif
#endif

// Loads the library in the file `path`; a bare file name is looked for as the system looks for libraries.
// Null when there is none that loads. Every load is matched by its own unloadLibrary().
void *loadLibrary(const char *path);
void unloadLibrary(void *library);

// The address of an exported name, null when the library has none such.
void *findSymbol(void *library, const char *name);

// Whether a file of that path exists and is no directory.
bool isFile(const char *path);

// The value of an environment variable, which belongs to the system; null when it is not set.
const char *environmentValue(const char *name);

// Lets another thread run: for the few places that wait for one.
void yieldThread();

} // namespace velnls::platform
