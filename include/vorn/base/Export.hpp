// Marks the symbols that make up the library's ABI. The library is built with hidden
// visibility, so everything an app or a feature module may call carries VORN_API.
#pragma once

#define VORN_API __attribute__((visibility("default")))
