// SPDX-License-Identifier: MIT
// The steps that set up the servers of docs/hosts.md.
#include "tests/guide/host_steps.h"

#include <gtest/gtest.h>

#include "tests/support/person.h"
#include "tests/support/sessions.h"

namespace {

// The shell reads the box as it reads what is pasted: a command that asks gets the box's next line.
std::string PasteTwice(const std::string& recipe) {
    return "cat >/mnt/box <<'BOX'\n" + recipe + "BOX\nsh -e </mnt/box\nsh -e </mnt/box\n";
}

// Starts it in the background, like systemd.
std::string RunService(const std::string& recipe) {
    return PasteTwice(recipe) + UnitValue(recipe, "ExecStart") + " &\n";
}

// Waits until a server listens on the port.
std::string AwaitPort(int port) {
    char line[80];
    snprintf(line, sizeof line, "until grep -q ':%04X 00000000:0000 0A' /proc/net/tcp",
             static_cast<unsigned>(port));
    return line + std::string("; do sleep 0.05; done\n");
}

// Pastes the entry as its user would.
std::string InstallEntry() {
    return "cat >/mnt/entry <<'ENTRY'\n" + Recipe("entry") +
           "ENTRY\nsu visitor -c 'cd; HOME=/mnt/home/visitor sh -e /mnt/entry'\n";
}

}  // namespace

HostMachine::HostMachine(const Host& host)
    : Machine(host.port, (host.has_entry ? InstallEntry() : "") + host.steps, host.packages) {}

Host WithoutEntry(Host host) {
    host.has_entry = false;
    return host;
}

Host SshHost(const std::string& line, const std::string& by) {
    Host host{FreePort(), {"openssh-server", "locales"}, "", true};
    std::string recipe = Recipe("sshd", host.words());
    if (!line.empty()) {
        const size_t at = recipe.find(line + '\n');
        if (at == std::string::npos) {
            ADD_FAILURE() << line << " is not in the recipe";
        } else {
            recipe.replace(at, line.size() + 1, by);
        }
    }
    host.steps = "mkdir -p /run/" + UnitValue(recipe, "RuntimeDirectory") + '\n' +
                 RunService(recipe) + AwaitPort(host.port);
    return host;
}

Host BusyboxHost() {
    Host host{FreePort(), {"busybox-static"}, "", true};
    const std::string recipe = Recipe("telnetd-busybox", host.words());
    host.steps = "export " + UnitValue(recipe, "Environment") + '\n' + RunService(recipe) +
                 AwaitPort(host.port);
    return host;
}

Host InetdHost() {
    Host host{FreePort(), {"inetutils-inetd", "inetutils-telnetd"}, "", true};
    host.steps = PasteTwice(Recipe("telnetd-inetd", host.words())) +
                 "cp /etc/inetd.conf /var/log\n/usr/sbin/inetutils-inetd\n" + AwaitPort(host.port);
    return host;
}

// The console server's line and the host's are the two ends of a pair of pseudo-terminals.
Host SerialHost() {
    Host host{FreePort(), {"ser2net", "libgensio4", "libyaml-0-2", "libsctp1"}, "", true};
    Words words = host.words();
    words["DEVICE"] = "/mnt/line";
    words["LINE"] = "console0";
    const std::string getty = Recipe("getty", words);
    const std::string command = UnitValue(getty, "ExecStart");
    EXPECT_EQ(command[0], '-') << "its failure is none of the unit's";
    const size_t line = command.find("console0");
    host.steps =
        "socat pty,raw,echo=0,link=/mnt/line pty,raw,echo=0,link=/mnt/console &\n"
        "until [ -e /mnt/console ]; do sleep 0.05; done\n"
        "console=$(readlink /mnt/console)\n" +
        PasteTwice(getty) + "mv /etc/ser2net.yaml /mnt/packaged\n" +
        PasteTwice(Recipe("ser2net", words)) +
        "mv /etc/ser2net.yaml /var/log/alone.yaml\nmv /mnt/packaged /etc/ser2net.yaml\n" +
        PasteTwice(Recipe("ser2net", words)) + "cp /etc/ser2net.yaml /var/log\n" +
        "/usr/sbin/ser2net -n -c /etc/ser2net.yaml &\nsetsid " + command.substr(1, line - 1) +
        "${console#/dev/}" + command.substr(line + 8) + " &\n" + AwaitPort(host.port);
    return host;
}

void WithSshSession(const Host& host, const std::string& more,
                    const std::function<void()>& person) {
    WithConfig(Recipe("ssh-client", host.words()) + more, [&] {
        SignOnWithPassword();
        ASSERT_TRUE(TerminalShows("$\n")) << TerminalText() << StatusText();
        person();
    });
}

void WithTelnetSession(const Host& host, const std::string& more,
                       const std::function<void()>& person) {
    WithConfig(Recipe("telnet-client", host.words()) + Recipe("auto-login") + more, [&] {
        ASSERT_TRUE(TerminalShows("\n$\n")) << TerminalText() << StatusText();
        person();
    });
}
