#include "wintest.h"

#include "win_commands.h"
#include "win_identity.h"

using namespace varnel::win;

WINTEST_CASE(userNameMatchesWhatTheShellReports)
{
    std::string name;
    CHECK(currentUserName(name));
    CHECK(!name.empty());

    std::string echoed = decodeCommandOutput(runAndRead(L"cmd /c echo %USERNAME%", 30000));
    while (!echoed.empty() && (echoed.back() == '\n' || echoed.back() == '\r'))
        echoed.pop_back();
    CHECK_EQ(name, echoed);
}
