#pragma once

/// A call as it appears in a file of the backend, apart from white space.
struct NativeCall {
    const char* file;
    const char* text;
};
