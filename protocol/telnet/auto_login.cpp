// Automatic login.
#include "protocol/telnet/telnet.h"

#include <string_view>

#include "session/session_ports.h"
#include "session/session_state.h"
#include "text/text.h"

namespace {

void TakeText(LPCWSTR from, char* to) {
    std::memset(to, 0, kLoginTextSize);
    AnsiFromWide(from, to, kLoginTextSize);
}

void RespondIfFound(std::string_view chunk, DWORD* armed, const char* search,
                    const char* response) {
    if (!*armed || chunk.find(search) == std::string_view::npos) return;
    *armed = 0;
    SendResponse(response);
}

}  // namespace

void ArmAutoLogin() {
    AutoLogin& login = session.login;
    TakeText(session.settings.sear1, login.search1);
    TakeText(session.settings.sear2, login.search2);
    TakeText(session.settings.resp1, login.response1);
    TakeText(session.settings.resp2, login.response2);
    login.login_armed1 = login.search1[0] && login.response1[0];
    login.login_armed2 = login.search2[0] && login.response2[0];
}

void CheckAutoLogin(const BYTE* bytes, int count) {
    AutoLogin& login = session.login;
    const std::string_view chunk(reinterpret_cast<const char*>(bytes), static_cast<size_t>(count));
    RespondIfFound(chunk, &login.login_armed1, login.search1, login.response1);
    RespondIfFound(chunk, &login.login_armed2, login.search2, login.response2);
}
