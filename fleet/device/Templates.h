#pragma once

#include "common/Schemas.h"

#include <string>
#include <vector>

namespace Fleet {

/// What the program can be without a schema file.
std::vector<std::string> TemplateNames();

/// Sections and schemas of that template; null for an unknown one.
SchemasPtr BuildTemplate(std::string const& name);

} // namespace Fleet
