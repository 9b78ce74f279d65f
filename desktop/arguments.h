#pragma once

#include <vector>

#include "support/text.h"

/// What can stand on the command line beside the command, as bits of a set.
enum Option : unsigned {
    kOptionHelp = 1,
    kOptionProfile = 2,
    kOptionAgent = 4,
    kOptionQuiet = 8,
    kOptionOut = 16,
    kOptionXml = 32,
    kOptionTabs = 64,
    kOptionFolder = 128,
    kOptionChanged = 256,
    kOptionAcceptDeletions = 512,
    kOptionDelete = 1024,
    kOptionNew = 2048,
};

/// The command line, taken apart but not yet judged by its command.
struct Arguments {
    /// Options that were given.
    unsigned options = 0;
    CString profile;
    CString agent;
    CString out;
    /// The identifier of a folder, in hexadecimal.
    CString folder;
    /// The path of a map file.
    CString changed;
    /// The identifier of an item to delete, in hexadecimal.
    CString doomed;
    /// The command and its operands.
    std::vector<CString> words;

    [[nodiscard]] bool Has(Option option) const { return (options & option) != 0; }
};

/// Takes a command line without the program's name apart. An option can stand anywhere; its value is the next
/// argument or stands behind "=". Behind "--" everything is a word. Throws a usage Failure.
Arguments ParseArguments(const std::vector<CString>& arguments);

/// The name of an option as the user writes it.
CString OptionName(Option option);
