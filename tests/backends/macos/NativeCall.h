#pragma once

/// A call as it appears in a source file of the backend, ignoring white space.
struct NativeCall {
    const char* file;
    const char* text;
};
