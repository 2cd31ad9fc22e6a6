#pragma once

// A small runner for the backend's test programs under Wine: WINTEST_CASE(name) { CHECK(...);
// CHECK_EQ(actual, expected); }. A case fails on a failed check, an exception or no check at all;
// the program fails when a case failed or none ran. A case name as argument runs only that case.

#include <chrono>
#include <cstdio>
#include <exception>
#include <string>
#include <type_traits>
#include <vector>

#include <windows.h>

namespace wintest {

struct Case {
    const char *name;
    void (*run)();
};

inline std::vector<Case> cases;
inline int checks = 0, failures = 0;

// Test programs share one prefix and may run at the same time.
inline std::wstring unique(const std::wstring &stem)
{
    return stem + L"-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
           std::to_wstring(GetTickCount64());
}

// Text with anything but printable ASCII escaped, so a stray \r or UTF-16 byte shows.
template <typename Char> std::string show(const std::basic_string<Char> &s)
{
    std::string out = sizeof(Char) > 1 ? "L\"" : "\"";
    for (Char c : s) {
        const auto code = static_cast<unsigned long>(static_cast<std::make_unsigned_t<Char>>(c));
        char escaped[16] = {static_cast<char>(code)};
        if (code < 0x20 || code >= 0x7f)
            std::snprintf(escaped, sizeof escaped, "\\x%02lx", code);
        out += escaped;
    }
    return out + "\"";
}

template <typename T> std::string show(const T &value);
template <typename T> std::string show(const std::vector<T> &list)
{
    std::string out = "{";
    for (size_t i = 0; i < list.size(); ++i)
        out += (i ? ", " : "") + show(list[i]);
    return out + "}";
}

template <typename T> std::string show(const T &value)
{
    if constexpr (std::is_convertible_v<T, const char *>)
        return show(std::string(value));
    else if constexpr (std::is_convertible_v<T, const wchar_t *>)
        return show(std::wstring(value));
    else if constexpr (std::is_unsigned_v<T>)
        return std::to_string(static_cast<unsigned long long>(value));
    else
        return std::to_string(static_cast<long long>(value));
}

inline bool report(bool ok, const char *file, int line, const std::string &message)
{
    ++checks;
    if (!ok) {
        ++failures;
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

} // namespace wintest

#define WINTEST_CASE(name)                                                                         \
    static void name();                                                                            \
    static const bool name##_registered = (wintest::cases.push_back({#name, name}), true);         \
    static void name()

#define CHECK(condition)                                                                           \
    wintest::report(static_cast<bool>(condition), __FILE__, __LINE__,                              \
                    std::string("CHECK(") + #condition + ") failed")
#define CHECK_EQ(actual, expected)                                                                 \
    wintest::checkEqual((actual), (expected), __FILE__, __LINE__, #actual ", " #expected)

int main(int argc, char **argv)
{
    int ran = 0, failed = 0;
    for (const wintest::Case &c : wintest::cases) {
        if (argc > 1 && c.name != std::string(argv[1]))
            continue;
        const int failuresBefore = wintest::failures;
        wintest::checks = 0;
        const auto start = std::chrono::steady_clock::now();
        std::printf("RUN   %s\n", c.name);
        std::fflush(stdout);
        try {
            c.run();
        } catch (const std::exception &e) {
            wintest::report(false, __FILE__, __LINE__, std::string("exception: ") + e.what());
        }
        if (wintest::checks == 0)
            wintest::report(false, __FILE__, __LINE__, "the case checked nothing");
        const bool ok = wintest::failures == failuresBefore;
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        std::printf("%s %s (%.3f s)\n", ok ? "PASS " : "FAIL ", c.name, took.count());
        ++ran;
        failed += ok ? 0 : 1;
    }
    std::printf("%d of %d cases passed\n", ran - failed, ran);
    return ran == 0 ? 2 : failed == 0 ? 0 : 1;
}
