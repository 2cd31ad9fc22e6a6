#pragma once

// A small test runner for the Windows backend's test programs, which run under Wine where a
// larger framework buys nothing. Each test program includes this header once:
//
//   WINTEST_CASE(name) { CHECK(...); CHECK_EQ(actual, expected); }
//
// A case fails when a check fails, when it throws, or when it checked nothing at all. The
// program exits non-zero when any case failed; a case name as argument runs only that case.

#include <chrono>
#include <cstdint>
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

inline std::string show(const std::string &s)
{
    std::string out = "\"";
    for (unsigned char c : s) {
        if (c == '\r')
            out += "\\r";
        else if (c == '\n')
            out += "\\n";
        else if (c < 0x20 || c == 0x7f) {
            char hex[8];
            std::snprintf(hex, sizeof(hex), "\\x%02x", c);
            out += hex;
        } else
            out += static_cast<char>(c);
    }
    return out + "\"";
}

inline std::string show(const char *s)
{
    return show(std::string(s));
}

inline std::string show(const std::wstring &s)
{
    std::string out = "L\"";
    for (wchar_t c : s) {
        if (c >= 0x20 && c < 0x7f) {
            out += static_cast<char>(c);
        } else {
            char hex[12];
            std::snprintf(hex, sizeof(hex), "\\u%04x", static_cast<unsigned>(c));
            out += hex;
        }
    }
    return out + "\"";
}

inline std::string show(const wchar_t *s)
{
    return show(std::wstring(s));
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
    if constexpr (std::is_enum_v<T>) {
        return std::to_string(static_cast<long long>(value));
    } else {
        std::ostringstream out;
        out << value;
        return out.str();
    }
}

inline void fail(const char *file, int line, const std::string &message)
{
    ++state().failures;
    std::printf("    %s:%d: %s\n", file, line, message.c_str());
    std::fflush(stdout);
}

inline bool check(bool ok, const char *file, int line, const char *expression)
{
    ++state().checks;
    if (!ok)
        fail(file, line, std::string("CHECK(") + expression + ") failed");
    return ok;
}

template <typename A, typename B>
bool checkEqual(const A &actual, const B &expected, const char *file, int line,
                const char *actualText, const char *expectedText)
{
    ++state().checks;
    if (actual == expected)
        return true;
    fail(file, line,
         std::string("CHECK_EQ(") + actualText + ", " + expectedText +
             ") failed\n      actual:   " + show(actual) + "\n      expected: " + show(expected));
    return false;
}

inline int runAll(int argc, char **argv)
{
    const std::string only = argc > 1 ? argv[1] : std::string();
    int failedCases = 0;
    int ran = 0;
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
            fail(__FILE__, __LINE__, std::string("exception: ") + e.what());
        } catch (...) {
            fail(__FILE__, __LINE__, "unknown exception");
        }
        if (state().checks == 0)
            fail(__FILE__, __LINE__, "the case checked nothing");
        const long long ms = std::chrono::duration_cast<std::chrono::milliseconds>(
                                 std::chrono::steady_clock::now() - start)
                                 .count();
        const bool failed = state().failures != failuresBefore;
        failedCases += failed ? 1 : 0;
        std::printf("%s %s (%lld ms)\n", failed ? "FAIL " : "PASS ", c.name, ms);
        std::fflush(stdout);
    }
    if (ran == 0) {
        std::printf("no test case named %s\n", only.c_str());
        return 2;
    }
    std::printf("%d of %d cases passed\n", ran - failedCases, ran);
    return failedCases == 0 ? 0 : 1;
}

} // namespace wintest

#define WINTEST_CASE(name)                                                                         \
    static void name();                                                                            \
    static const wintest::Registrar name##_registrar(#name, name);                                 \
    static void name()

#define CHECK(condition)                                                                           \
    wintest::check(static_cast<bool>(condition), __FILE__, __LINE__, #condition)
#define CHECK_EQ(actual, expected)                                                                 \
    wintest::checkEqual((actual), (expected), __FILE__, __LINE__, #actual, #expected)

int main(int argc, char **argv)
{
    return wintest::runAll(argc, argv);
}
