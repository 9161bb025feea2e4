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

/// Text as a literal of JavaScript, quotes included.
std::string scriptText(std::string_view text);

/// File name of a type's page, and a link to it.
std::string pageName(std::string_view typeName);
std::string linkTo(std::string_view typeName);

/// Anchors of a field in the page of its type, and of a family and a table in the pages of these.
std::string anchorOf(const Field& field);

/// Name of the family that a type belongs to: its file less the ending, as words.
std::string familyOf(const RecordType& type);

/// One line on what a type is: what the description says, or what follows from its place in it.
/// It is HTML, with links.
std::string summary(const Format& format, const RecordType& type);

/// Links to the types that hold this one, each with the name of the field; empty for main blocks.
std::string ownerLinks(const Format& format, const RecordType& type);

/// "u16", "f32", "char[20]", "sub-blocks": the type of a field as a reader of the wire sees it.
std::string typeText(const RecordType& type, const Field& field);

/// A number without needless digits.
std::string numberText(const Number& number);

} // namespace korcg::generator::reference
