// Text inside documents of HTML.
#pragma once

#include <string>
#include <string_view>

namespace ormel {

/// Text with its "&", "<", ">" and quotes made harmless.
std::string EscapeHtml(std::string_view text);

}  // namespace ormel
