// SPDX-License-Identifier: MIT
// The descriptors of dials, and requests of other programs on the same settings.
#include <fcntl.h>
#include <unistd.h>

#include <QCryptographicHash>

#include "platform/qt/services/posix_sockets.h"
#include "platform/qt/services/services.h"
#include "tests/app/dial_stage.h"

namespace {

class DialEdges : public Dialling {
  protected:
    static long OpenDescriptors() {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    }
};

TEST_F(DialEdges, AProgramThatCannotStartLeavesNoDescriptor) {
    MakeEntry("depot");
    std::ofstream(folder + "/pppd") << "#!/no/such/interpreter\n";
    fs::permissions(folder + "/pppd", fs::perms::owner_all);
    RunProgram({}, [&] {
        const auto dial = [&] {
            Dial(u"depot");
            EXPECT_TRUE(DismissBox(kFailed));
            EXPECT_TRUE(NotDialling());
        };
        dial();
        const long before = OpenDescriptors();
        for (int i = 0; i < 5; ++i) dial();
        EXPECT_LT(OpenDescriptors(), before + 5);
    });
}

TEST_F(DialEdges, AProgramThatClosesItsLogTakesNoDescriptorOfOthers) {
    constexpr int kDescriptors = 30;
    MakeEntry("depot");
    MakeProgram("exec >/dev/null 2>&1\n: >silent\nwhile :; do sleep 0.02; done\n", kEnds);
    RunProgram({}, [&] {
        Dial(u"depot");
        ASSERT_TRUE(FileAppears(folder + "/silent"));
        Sleep(200);  // the log's end has been read by then
        std::vector<int> own;
        for (int i = 0; i < kDescriptors; ++i) own.push_back(open("/dev/null", O_RDONLY));
        Sleep(300);
        for (const int descriptor : own) EXPECT_LE(0, fcntl(descriptor, F_GETFD)) << descriptor;
        for (const int descriptor : own) close(descriptor);
    });
}

// The longest request that is heard has 64 bytes before its line feed.
TEST(OtherInstanceEdges, ALongRequestIsHeardToItsEndAndALongerOneIsNot) {
    constexpr int kLongest = 64, kPatience = 10000;
    RunProgram({}, [] {
        ASSERT_TRUE(Eventually([] { return session.accelerators != nullptr; }));
        const QByteArray root = QByteArray::fromStdString(DeviceRoot());
        const QByteArray hash = QCryptographicHash::hash(root, QCryptographicHash::Sha1).toHex();
        const auto answer = [&](int size) {
            const int caller = CallLocally("quill-" + hash.toStdString());
            EXPECT_LE(0, caller);
            SayLocally(caller, std::string(static_cast<size_t>(size), 'x') + '\n');
            EXPECT_TRUE(AwaitLocally(caller, kPatience));
            char bytes[16];
            const long count = HearLocally(caller, bytes, sizeof(bytes));
            CloseLocally(caller);
            return std::string(bytes, static_cast<size_t>(std::max(count, 0L)));
        };
        EXPECT_EQ("done\n", answer(kLongest));
        EXPECT_EQ("", answer(3 * kLongest));
    });
}

}  // namespace
