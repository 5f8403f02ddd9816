// Files of convert: what happens to inputs and outputs that cannot be used, and when an output appears.
#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "process.hpp"

namespace velnls::tool {
namespace {

TEST(OutputFile, HoldsTheResultAndNothingGoesToStandardOutput) {
    const Folder folder;
    const Result result = runTool({"convert", "-f", "1252", "-o", folder.path("out")}, "\xE9");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(readFile(folder.path("out")), "\xC3\xA9");
    EXPECT_EQ(folder.names(), std::vector<std::string>{"out"});
}

TEST(OutputFile, MayBeTheInputFile) {
    const Folder folder;
    const std::string file = folder.write("text", repeat("\xE9", 600000));
    EXPECT_EQ(runTool({"convert", "-f", "1252", "-o", file, file}).exitCode, 0);
    EXPECT_EQ(readFile(file), repeat("\xC3\xA9", 600000));
}

TEST(OutputFile, KeepsItsModeWhenReplaced) {
    NEEDS_POSIX("access rights in three digits");
    const Folder folder;
    const std::string file = folder.write("text", "old");
    ASSERT_EQ(::chmod(file.c_str(), 0640), 0);
    EXPECT_EQ(runTool({"convert", "-o", file}, "new").exitCode, 0);
    struct stat facts = {};
    ASSERT_EQ(::stat(file.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 07777, 0640u);
}

TEST(OutputFile, NewOneHasTheModeOfTheMask) {
    NEEDS_POSIX("access rights in three digits");
    const Folder folder;
    const std::string file = folder.path("out");
    EXPECT_EQ(runShell("umask 027; \"$VELNLS\" convert -o '" + file + "' </dev/null").exitCode, 0);
    struct stat facts = {};
    ASSERT_EQ(::stat(file.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 07777, 0640u);
}

TEST(OutputFile, BehindASymbolicLinkIsReplacedAndTheLinkStays) {
    const Folder folder;
    const std::string file = folder.write("text", "old");
    std::filesystem::create_symlink("text", folder.path("link"));
    EXPECT_EQ(runTool({"convert", "-o", folder.path("link")}, "new").exitCode, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link")));
    EXPECT_EQ(readFile(file), "new");
}

TEST(OutputFile, BehindASymbolicLinkIsMadeWhereItIsNotThereYet) {
    NEEDS_POSIX("links that lead nowhere yet");
    const Folder folder;
    std::filesystem::create_symlink("text", folder.path("second"));
    std::filesystem::create_symlink(folder.path("second"), folder.path("first"));
    EXPECT_EQ(runTool({"convert", "-o", folder.path("first")}, "new").exitCode, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("first")));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("second")));
    EXPECT_EQ(readFile(folder.path("text")), "new");
}

TEST(OutputFile, StaysAsItWasWhenInputIsMalformed) {
    const Folder folder;
    const std::string file = folder.write("out", "old");
    EXPECT_EQ(runTool({"convert", "-o", file}, "new\xFF").exitCode, 3);
    EXPECT_EQ(readFile(file), "old");
    EXPECT_EQ(folder.names(), std::vector<std::string>{"out"});
}

TEST(OutputFile, IsNotMadeWhenInputIsMalformed) {
    const Folder folder;
    EXPECT_EQ(runTool({"convert", "-o", folder.path("out")}, "new\xFF").exitCode, 3);
    EXPECT_EQ(folder.names(), std::vector<std::string>{});
}

TEST(OutputFile, IsKeptWhenCharactersWereSubstituted) {
    const Folder folder;
    EXPECT_EQ(runTool({"convert", "-t", "1252", "-o", folder.path("out")}, "\xD0\x96").exitCode, 1);
    EXPECT_EQ(readFile(folder.path("out")), "?");
}

TEST(OutputFile, MayBeADevice) {
    NEEDS_POSIX("/dev");
    EXPECT_EQ(runTool({"convert", "-o", "/dev/null"}, "text").exitCode, 0);
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST(OutputFile, MayBeAPipe) {
    NEEDS_POSIX("named pipes among the files");
    const Folder folder;
    const Result result =
        runShell("mkfifo '" + folder.path("pipe") + "'; cat '" + folder.path("pipe") +
                 "' & printf text | \"$VELNLS\" convert -o '" + folder.path("pipe") + "'; wait");
    EXPECT_EQ(result.out, "text");
    EXPECT_EQ(folder.names(), std::vector<std::string>{"pipe"});
}

TEST(OutputFile, InAMissingFolderHasExitCode2) {
    const Folder folder;
    const std::string file = folder.path("missing/out");
    const Result result = runTool({"convert", "-o", file}, "text");
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err, "velnls: " + file + ": No such file or directory\n");
}

TEST(OutputFile, ThatIsAFolderHasExitCode2) {
    const Folder folder;
    const Result result = runTool({"convert", "-o", folder.path("")}, "text");
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err, "velnls: " + folder.path("") + ": Is a directory\n");
}

TEST(OutputFile, OnAFullDeviceHasExitCode2) {
    NEEDS_POSIX("/dev");
    const Result result = runTool({"convert", "-o", "/dev/full"}, "text");
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err, "velnls: /dev/full: No space left on device\n");
}

TEST(OutputFile, IsRemovedWhenTheProgramIsInterrupted) {
    NEEDS_POSIX("signals");
    const Folder folder;
    const Result result = runShell("(printf text; sleep 5) | \"$VELNLS\" convert -o '" + folder.path("out") +
                                   "' & sleep 0.5; ls '" + folder.path("") +
                                   "' | wc -l | tr -d ' '; kill -TERM $!; wait $!; echo $?");
    EXPECT_EQ(result.out, "1\n143\n");
    EXPECT_EQ(folder.names(), std::vector<std::string>{});
}

TEST(StandardOutput, OnAFullDeviceHasExitCode2) {
    const Result result = runShell("printf text | \"$VELNLS\" convert > /dev/full");
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err, "velnls: standard output: No space left on device\n");
    EXPECT_EQ(runShell("\"$VELNLS\" list > /dev/full").exitCode, 2);
}

TEST(StandardOutput, ThatIsTheInputFileIsRefused) {
    NEEDS_POSIX("streams handed down that know the volume of their file, under Wine");
    const Folder folder;
    const std::string file = folder.write("text", "text");
    const Result result = runShell("\"$VELNLS\" convert '" + file + "' >> '" + file + "'");
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err, "velnls: " + file + ": is the output file too\n");
    EXPECT_EQ(readFile(file), "text");
}

TEST(StandardOutput, ThatNobodyReadsEndsTheProgramQuietly) {
    const Folder folder;
    const std::string file = folder.write("text", repeat("some text\n", 1000000));
    const Result result = runShell("\"$VELNLS\" convert '" + file + "' | head -n 1");
    EXPECT_EQ(result.out, "some text\n");
    EXPECT_EQ(result.err, "");
}

// Programs that start others often switch the signal off.
TEST(StandardOutput, ThatNobodyReadsEndsTheProgramQuietlyWithoutTheSignalToo) {
    const Folder folder;
    const std::string file = folder.write("text", repeat("some text\n", 1000000));
    const Result result =
        runShell("trap '' PIPE; (\"$VELNLS\" convert '" + file + "'; echo \"exit $?\" >&2) | head -n 1");
    EXPECT_EQ(result.out, "some text\n");
    EXPECT_EQ(result.err, "exit 2\n");
}

TEST(InputFile, MissingHasExitCode2AndNothingIsWritten) {
    const Folder folder;
    const std::string good = folder.write("good", "text");
    const std::string missing = folder.path("missing");
    const Result result = runTool({"convert", good, missing});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "velnls: " + missing + ": No such file or directory\n");
}

TEST(InputFile, ThatIsANamedPipeIsOpenedOnce) {
    NEEDS_POSIX("named pipes among the files");
    const Folder folder;
    const std::string pipe = folder.path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (int round = 0; round < 20; ++round) {
        const Result result =
            runShell("printf hello > '" + pipe + "' & timeout 10 \"$VELNLS\" convert -f 1252 '" + pipe + "'");
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.out, "hello");
    }
}

TEST(InputFile, ThatIsAFolderHasExitCode2) {
    const Result result = runTool({"convert", "/"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err, "velnls: /: Is a directory\n");
}

TEST(InputFile, InBracketsIsAFileAndNoListOfFiles) {
    const Folder folder;
    folder.write("[a,b]", "both\n");
    folder.write("a", "a\n");
    folder.write("b", "b\n");
    for (const char *command : {"convert", "sort", "words", "like %", "case lower"}) {
        const Result result = runShell("cd '" + folder.path("") + "' && \"$VELNLS\" " + command + " '[a,b]'");
        EXPECT_EQ(result.err, "") << command;
        EXPECT_EQ(result.out, "both\n") << command;
    }
}

TEST(StandardOutput, ThatIsTheInputFileIsRefusedByEveryCommandThatWritesAsItReads) {
    NEEDS_POSIX("streams handed down that know the volume of their file, under Wine");
    for (const char *command : {"case upper", "replace a b", "like %", "key", "words", "count"}) {
        const Folder folder;
        const std::string file = folder.write("file", "a\n");
        const Result result =
            runShell("\"$VELNLS\" " + std::string(command) + " '" + file + "' >> '" + file + "'");
        EXPECT_EQ(result.exitCode, 2) << command;
        EXPECT_EQ(result.err, "velnls: " + file + ": is the output file too\n") << command;
        EXPECT_EQ(readFile(file), "a\n") << command;
    }
}

TEST(StandardOutput, GetsWhatWasFinishedBeforeAFailure) {
    const Folder folder;
    const std::string good = folder.write("good", "a\nb\n");
    for (const char *command : {"like %", "case lower", "words", "replace x y"}) {
        const Result result = runShell("\"$VELNLS\" " + std::string(command) + " '" + good + "' /");
        EXPECT_EQ(result.exitCode, 2) << command;
        EXPECT_EQ(result.out, "a\nb\n") << command;
        EXPECT_EQ(result.err, "velnls: /: Is a directory\n") << command;
    }
}

TEST(Help, ThatCannotBeWrittenHasExitCode2) {
    EXPECT_EQ(runShell("\"$VELNLS\" --help > /dev/full").exitCode, 2);
}

// Constant memory: the address space allowed is far smaller than the input.
TEST(Memory, DoesNotGrowWithTheInput) {
    NEEDS_POSIX("limits of address space");
#if defined(VELNLS_SANITIZED)
    GTEST_SKIP() << "sanitizers take address space of their own";
#endif
    const Result result =
        runShell("ulimit -v 60000; yes 'some text, some more' | head -c 200000000 | \"$VELNLS\" "
                 "convert -f 1252 -t UTF-16 | wc -c | tr -d ' '");
    EXPECT_EQ(result.out, "400000000\n");
    EXPECT_EQ(result.err, "");
}

} // namespace
} // namespace velnls::tool
