// Banner, login and password. Any name and any password will do.
#include "demo/screens.h"

namespace {

void WriteBanner(std::string& out) {
    const char* name = "HARBOUR STORES";
    WriteAt(out, 4, 16, std::string("\x1b[1m").append(name).append("\x1b[m"));
    WriteGraphics(out, 6, 16, std::string(48, 'q'));
    WriteAt(out, 7, 16, "Quay 4, North Basin     stock and shipping desk");
    WriteGraphics(out, 8, 16, std::string(48, 'q'));
    WriteAt(out, 10, 16, "A demo host on this machine. Any name and any");
    WriteAt(out, 11, 16, "password will let you in.");
}

void EnterLogin(Session& session) {
    WriteBanner(session.out);
    WriteAt(session.out, 14, 16, "login: ");
}

void AskPassword(Session& session) {
    session.name = session.line.text;
    session.step = 1;
    StartLine(session, true);
    WriteAt(session.out, 15, 16, "Password: ");
}

void TypedLogin(Session& session, const std::string& bytes) {
    for (const char byte : bytes) {
        if (!TakeLineByte(session, byte)) continue;
        if (session.step == 1) return ShowScreen(session, kMenuScreen);
        if (session.line.text.empty()) {
            WriteAt(session.out, 14, 16, "login: ");
        } else {
            AskPassword(session);
        }
    }
}

void EnterGoodbye(Session& session) {
    WriteAt(session.out, 2, 3, "Thank you for calling, " + session.name + ".");
    WriteAt(session.out, 3, 3, "Harbour Stores is open every day from 6:30.");
    session.out += "\r\n\r\n";
    session.ending = true;
}

void TypedNothing(Session&, const std::string&) {}

}  // namespace

const Screen kLoginScreen = {EnterLogin, TypedLogin, nullptr};
const Screen kGoodbyeScreen = {EnterGoodbye, TypedNothing, nullptr};
