// What a program says when the desktop that it should open its windows on cannot be reached: one sentence and status 1,
// where Qt would tell of its plugins and abort.
#pragma once

namespace ecu::desktop {

// For the time in which the application object is made; `program` is a literal that starts the sentence.
class WithoutDisplay {
public:
    explicit WithoutDisplay(const char* program);
    ~WithoutDisplay();
    WithoutDisplay(const WithoutDisplay&) = delete;
    WithoutDisplay& operator=(const WithoutDisplay&) = delete;
};

} // namespace ecu::desktop
