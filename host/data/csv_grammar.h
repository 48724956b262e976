// The grammar of comma-separated values, with any one character between them.
#pragma once

#include <tao/pegtl.hpp>

namespace vela::host::csv {

namespace pegtl = tao::pegtl;

struct LineEnd
    : pegtl::sor<pegtl::one<'\n'>, pegtl::seq<pegtl::one<'\r'>, pegtl::opt<pegtl::one<'\n'>>>> {};

template <char kSeparator>
struct Ahead : pegtl::at<pegtl::sor<pegtl::one<kSeparator, '\r', '\n'>, pegtl::eof>> {};
// A quote inside is doubled. With anything behind the closing quote the field is a plain one.
struct QuotedText : pegtl::star<pegtl::sor<pegtl::not_one<'"'>, pegtl::string<'"', '"'>>> {};
template <char kSeparator>
struct QuotedField : pegtl::seq<pegtl::one<'"'>, QuotedText, pegtl::one<'"'>, Ahead<kSeparator>> {};
template <char kSeparator>
struct PlainField : pegtl::star<pegtl::not_one<kSeparator, '\r', '\n'>> {};
template <char kSeparator>
struct Field : pegtl::sor<QuotedField<kSeparator>, PlainField<kSeparator>> {};
template <char kSeparator>
struct Row : pegtl::seq<pegtl::list<Field<kSeparator>, pegtl::one<kSeparator>>,
                        pegtl::sor<LineEnd, pegtl::eof>> {};
// Lines without anything are no rows.
template <char kSeparator>
struct File : pegtl::until<pegtl::eof, pegtl::sor<LineEnd, Row<kSeparator>>> {};

}  // namespace vela::host::csv
