#pragma once

#include "TQX_Layout.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

/// Whether two objects of stored values are equal, floats at their width. Padding, which other
/// encoders do not list, may be missing in `expected`.
testing::AssertionResult sameFields(const Kor::MessageApi::TQX_TypeLayout& type,
                                    const nlohmann::json& expected, const nlohmann::json& actual);

/// The layout of a main block by its name, null when there is none.
const Kor::MessageApi::TQX_TypeLayout* layoutOf(const std::string& name);
