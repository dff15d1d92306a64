// The functions of the fmt library that are no templates, and its templates for
// plain characters, compiled once: in every file that makes a text they would
// take longer than the file itself.
#include <fmt/format-inl.h>

FMT_BEGIN_NAMESPACE
namespace detail {

template FMT_API auto dragonbox::to_decimal(float value) noexcept
    -> dragonbox::decimal_fp<float>;
template FMT_API auto dragonbox::to_decimal(double value) noexcept
    -> dragonbox::decimal_fp<double>;
template FMT_API locale_ref::locale_ref(std::locale const& locale);
template FMT_API auto locale_ref::get<std::locale>() const -> std::locale;
template FMT_API auto thousands_sep_impl(locale_ref locale)
    -> thousands_sep_result<char>;
template FMT_API auto decimal_point_impl(locale_ref locale) -> char;
template FMT_API void buffer<char>::append(char const* begin, char const* end);
template FMT_API void vformat_to(buffer<char>& out, string_view format,
                                 basic_format_args<FMT_BUFFER_CONTEXT(char)>,
                                 locale_ref locale);

}  // namespace detail
FMT_END_NAMESPACE
