// SPDX-License-Identifier: MIT
// Judges terminfo entries by the proof: what each promises that the terminal does not do, and what
// it lacks of the entry `quill`. Names come as arguments, or one a line on standard input.
//
// A line of output for each name, with tabs: name, then the counts of broken promises by what goes
// wrong (screen, look, reset, key), the count of quill's strings that it lacks, and the findings.
#include <cstdio>
#include <cstring>
#include <iostream>

#include "tests/hosts/proof.h"

static const Loss kLosses[] = {Loss::kScreen, Loss::kLook, Loss::kReset, Loss::kKey};

static size_t Count(const std::vector<Finding>& findings, Loss loss) {
    size_t count = 0;
    for (const Finding& finding : findings) count += finding.loss == loss;
    return count;
}

static std::string Lacking(const TerminfoEntry& entry, const TerminfoEntry& quill, size_t* count) {
    std::string names;
    for (const auto& [capability, text] : quill.strings) {
        if (Has(entry, capability)) continue;
        names += " " + capability;
        ++*count;
    }
    return names;
}

static void Judge(const std::string& name, const TerminfoEntry& quill) {
    TerminfoEntry entry;
    if (!ReadEntry(name, &entry)) return;
    const std::vector<Finding> findings = ProveEntry(entry);
    size_t lacking = 0;
    const std::string names = Lacking(entry, quill, &lacking);
    printf("%s", name.c_str());
    for (const Loss loss : kLosses) printf("\t%zu", Count(findings, loss));
    printf("\t%zu\tlacks:%s", lacking, names.c_str());
    for (const Finding& finding : findings) {
        printf("\t%s %s: %s", LossName(finding.loss), finding.capability.c_str(),
               finding.message.c_str());
    }
    printf("\n");
}

int main(int argc, char** argv) {
    setenv("TERMINFO", QUILL_TERMINFO, 0);
    TerminfoEntry quill;
    if (!ReadEntry("quill", &quill)) {
        fprintf(stderr, "no entry quill in %s\n", QUILL_TERMINFO);
        return 2;
    }
    for (int i = 1; i < argc; ++i) Judge(argv[i], quill);
    std::string name;
    while (argc == 1 && std::getline(std::cin, name)) Judge(name, quill);
    return 0;
}
