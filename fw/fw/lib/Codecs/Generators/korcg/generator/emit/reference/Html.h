#pragma once

#include "model/Model.h"

#include <string>
#include <string_view>

/// Pieces of the HTML reference.
namespace korcg::generator::reference
{

/// Text with the characters that mean something in HTML replaced.
std::string escaped(std::string_view text);

/// A whole page. `body` is HTML, `title` plain text.
std::string page(std::string_view title, std::string_view body);

/// File name of a type's page, and a link to it.
std::string pageName(std::string_view typeName);
std::string linkTo(std::string_view typeName);

/// "u16", "f32", "char[20]", "sub-blocks": the type of a field as a reader of the wire sees it.
std::string typeText(const RecordType& type, const Field& field);

/// A number without needless digits.
std::string numberText(const Number& number);

} // namespace korcg::generator::reference
