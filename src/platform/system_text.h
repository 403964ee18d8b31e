// The system's own texts for its error codes.
#ifndef ZR_PLATFORM_SYSTEM_TEXT_H
#define ZR_PLATFORM_SYSTEM_TEXT_H

namespace zr::platform {

// The text for a code of the operating system (system_error.h), in the user's language on Windows, in English on Linux.
// With the line end CR LF that the system gives; inserts ("%1") stay as they are.
class SystemText {
public:
    explicit SystemText(unsigned long code);
    ~SystemText();
    SystemText(const SystemText &) = delete;
    SystemText &operator=(const SystemText &) = delete;

    // Null if the system has none for the code, or no memory. Valid while this lives.
    const char *Get() const { return m_text; }

private:
    const char *m_text = nullptr;
};

} // namespace zr::platform

#endif
