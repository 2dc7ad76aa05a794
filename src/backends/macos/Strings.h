#pragma once

#include <QCoreApplication>
#include <QString>

#import <Foundation/Foundation.h>
#include <string>
#include <string_view>

namespace nocta {

/// Converts from UTF-8. Returns an empty string for invalid UTF-8.
inline NSString* nsString(std::string_view text) {
    NSString* const string = [[NSString alloc] initWithBytes:text.data()
                                                      length:text.size()
                                                    encoding:NSUTF8StringEncoding];
    return string != nil ? string : @"";
}

/// Converts to UTF-8. Returns an empty string for nil.
inline std::string stdString(NSString* string) {
    const char* const text = string.UTF8String;
    return text != nullptr ? text : "";
}

/// Translates a service's English text into the user's language.
inline NSString* translated(std::string_view english) {
    return QCoreApplication::translate("Nocta", std::string(english).c_str()).toNSString();
}

} // namespace nocta
