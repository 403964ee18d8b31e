// Which of the system calls on one file fail, and how. The calls themselves are led here by failing_system.h of the
// platform; a test includes that.
#ifndef TESTS_PLATFORM_SYSTEM_FAULTS_H
#define TESTS_PLATFORM_SYSTEM_FAULTS_H

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

namespace zr::test {

enum class SystemCall {
    None,
    Open,
    Check, // of what was opened; nothing is open if it fails
    Read,
    Write,
    Seek,
    Close, // closes, whatever it answers
    Status // by the file's path
};

enum class SystemFault {
    Once,     // one call fails
    Lasting,  // and so do all behind it
    FullDisk, // of one write the front half is done, of all later ones nothing
    Short,    // one read or write and all behind it do a few bytes at most
    Signal    // one call is interrupted before it does anything
};

inline std::ostream &operator<<(std::ostream &stream, SystemCall call) {
    static constexpr const char *names[] = {"none", "open", "check", "read", "write", "seek", "close", "status"};
    return stream << names[static_cast<int>(call)];
}

// While it lives, the calls on the file of that name are counted, and the one that comes after so many others (of a kind
// that can have the fault) has it. One at a time; for one thread.
class SystemFaults {
public:
    SystemFaults(std::string file_name, SystemFault fault, int others) : m_name(std::move(file_name)), m_fault(fault) {
        m_left = others;
        s_current = this;
    }
    SystemFaults(const SystemFaults &) = delete;
    SystemFaults &operator=(const SystemFaults &) = delete;
    ~SystemFaults() { s_current = nullptr; }

    SystemCall Met() const { return m_met; }    // the call that had the fault first
    long long Place() const { return m_place; } // the place in the file at which that call found it; -1 for none
    bool Failed(SystemCall call) const { return m_failed[static_cast<int>(call)]; } // at least once, or in part
    int OpenFiles() const { return m_open; }                                        // how many the calls left open

    // For the calls.
    enum class Answer {
        Pass,
        Fail,
        Interrupt,
        Half,
        Few
    };
    static SystemFaults *Current() { return s_current; }
    bool IsMine(std::string_view path) const {
        return path.substr(path.find_last_of("/\\") + 1) == m_name; // the whole path where there is no separator
    }
    void CountOpen(int change) { m_open += change; }

    Answer Next(SystemCall call, long long place = -1) {
        const Answer answer = Decide(call, place);
        m_failed[static_cast<int>(call)] |= answer == Answer::Fail || answer == Answer::Half;
        return answer;
    }

    static std::size_t Shortened(Answer answer, std::size_t size) {
        constexpr std::size_t few = 7;
        return answer == Answer::Half ? size / 2 : answer == Answer::Few ? std::min(size, few) : size;
    }

private:
    Answer Decide(SystemCall call, long long place) {
        if (!CanHave(call) || (m_met == SystemCall::None && m_left-- > 0))
            return Answer::Pass;
        const bool first = m_met == SystemCall::None;
        if (first) {
            m_met = call;
            m_place = place;
        }
        switch (m_fault) {
        case SystemFault::Once:
            return first ? Answer::Fail : Answer::Pass;
        case SystemFault::Lasting:
            return Answer::Fail;
        case SystemFault::FullDisk:
            return first ? Answer::Half : Answer::Fail;
        case SystemFault::Short:
            return Answer::Few;
        case SystemFault::Signal:
            return first ? Answer::Interrupt : Answer::Pass;
        }
        return Answer::Pass;
    }

    bool CanHave(SystemCall call) const {
        switch (m_fault) {
        case SystemFault::FullDisk:
            return call == SystemCall::Write;
        case SystemFault::Short:
            return call == SystemCall::Read || call == SystemCall::Write;
        case SystemFault::Signal:
            return call == SystemCall::Open || call == SystemCall::Read || call == SystemCall::Write ||
                   call == SystemCall::Close;
        default:
            return true;
        }
    }

    static inline SystemFaults *s_current = nullptr;

    std::string m_name;
    SystemFault m_fault;
    int m_left = 0;
    int m_open = 0;
    SystemCall m_met = SystemCall::None;
    long long m_place = -1;
    bool m_failed[8] = {};
};

} // namespace zr::test

#endif
