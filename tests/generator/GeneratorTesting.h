#pragma once

#include "read/Load.h"

#include <string>
#include <vector>

/// Content of a file below tests/generator.
std::string readTestFile(const std::string& name);

/// Names of the files in a folder below tests/generator, sorted.
std::vector<std::string> testFiles(const std::string& folder);

/// The field of that display name; a test failure and a null pointer when there is none.
const korcg::generator::Field* findField(const korcg::generator::RecordType& type,
                                         const std::string& name);

/// Loads texts that must be free of errors; any error is a test failure.
korcg::generator::Format loadGood(const std::vector<korcg::generator::Source>& sources);

/// Name of a code (-1 downward).
std::string codeName(const korcg::generator::Format& format, int code);

/// The format of base.yaml and synthetic.yaml.
const korcg::generator::Format& synthetic();
