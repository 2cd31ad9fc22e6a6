#pragma once

// A small test runner for the Windows backend's test programs, which run under Wine where a
// larger framework buys nothing. Each test program includes this header once:
//
//   WINTEST_CASE(name) { CHECK(...); CHECK_EQ(actual, expected); }
//
// Cases that repeat with other values loop over a table of rows. A case fails when a check fails,
// when it throws, or when it checked nothing at all. The program exits non-zero when any case
// failed; a case name as argument runs only that case.

#include <chrono>
#include <cstdio>
#include <exception>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace wintest {

struct Case {
    const char *name;
    void (*run)();
};

struct State {
    std::vector<Case> cases;
    int checks = 0;
    int failures = 0;
};

inline State &state()
{
    static State s;
    return s;
}

struct Registrar {
    Registrar(const char *name, void (*run)()) { state().cases.push_back({name, run}); }
};

// Text with control characters (and for wide text, anything beyond ASCII) escaped.
template <typename Char> std::string show(const std::basic_string<Char> &s)
{
    std::string out = sizeof(Char) > 1 ? "L\"" : "\"";
    for (Char c : s) {
        const auto code = static_cast<unsigned long>(static_cast<std::make_unsigned_t<Char>>(c));
        char escaped[16] = {};
        if (c == '\r' || c == '\n')
            out += c == '\r' ? "\\r" : "\\n";
        else if (code >= 0x20 && code < 0x7f)
            out += static_cast<char>(code);
        else
            std::snprintf(escaped, sizeof escaped, sizeof(Char) > 1 ? "\\u%04lx" : "\\x%02lx",
                          code);
        out += escaped;
    }
    return out + "\"";
}

template <typename T> std::string show(const std::vector<T> &list)
{
    std::string out = "{";
    for (size_t i = 0; i < list.size(); ++i)
        out += (i ? ", " : "") + show(list[i]);
    return out + "}";
}

template <typename T> std::string show(const T &value)
{
    if constexpr (std::is_convertible_v<T, const char *>) {
        return show(std::string(value));
    } else if constexpr (std::is_convertible_v<T, const wchar_t *>) {
        return show(std::wstring(value));
    } else if constexpr (std::is_enum_v<T>) {
        return std::to_string(static_cast<long long>(value));
    } else {
        std::ostringstream out;
        out << value;
        return out.str();
    }
}

inline bool report(bool ok, const char *file, int line, const std::string &message)
{
    ++state().checks;
    if (!ok) {
        ++state().failures;
        std::printf("    %s:%d: %s\n", file, line, message.c_str());
        std::fflush(stdout);
    }
    return ok;
}

template <typename A, typename B>
bool checkEqual(const A &actual, const B &expected, const char *file, int line, const char *text)
{
    const bool ok = actual == expected;
    return report(ok, file, line,
                  ok ? std::string()
                     : std::string("CHECK_EQ(") + text + ") failed\n      actual:   " +
                           show(actual) + "\n      expected: " + show(expected));
}

inline int runAll(int argc, char **argv)
{
    const std::string only = argc > 1 ? argv[1] : std::string();
    int failedCases = 0, ran = 0;
    for (const Case &c : state().cases) {
        if (!only.empty() && only != c.name)
            continue;
        ++ran;
        const int failuresBefore = state().failures;
        state().checks = 0;
        const auto start = std::chrono::steady_clock::now();
        std::printf("RUN   %s\n", c.name);
        std::fflush(stdout);
        try {
            c.run();
        } catch (const std::exception &e) {
            report(false, __FILE__, __LINE__, std::string("exception: ") + e.what());
        } catch (...) {
            report(false, __FILE__, __LINE__, "unknown exception");
        }
        if (state().checks == 0)
            report(false, __FILE__, __LINE__, "the case checked nothing");
        const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::steady_clock::now() - start);
        const bool failed = state().failures != failuresBefore;
        failedCases += failed ? 1 : 0;
        std::printf("%s %s (%lld ms)\n", failed ? "FAIL " : "PASS ", c.name,
                    static_cast<long long>(ms.count()));
        std::fflush(stdout);
    }
    if (ran == 0)
        std::printf("no test case named %s\n", only.c_str());
    else
        std::printf("%d of %d cases passed\n", ran - failedCases, ran);
    return ran == 0 ? 2 : failedCases == 0 ? 0 : 1;
}

} // namespace wintest

#define WINTEST_CASE(name)                                                                         \
    static void name();                                                                            \
    static const wintest::Registrar name##_registrar(#name, name);                                 \
    static void name()

#define CHECK(condition)                                                                           \
    wintest::report(static_cast<bool>(condition), __FILE__, __LINE__,                              \
                    std::string("CHECK(") + #condition + ") failed")
#define CHECK_EQ(actual, expected)                                                                 \
    wintest::checkEqual((actual), (expected), __FILE__, __LINE__, #actual ", " #expected)

int main(int argc, char **argv)
{
    return wintest::runAll(argc, argv);
}
