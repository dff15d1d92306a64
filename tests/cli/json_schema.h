// JSON of the tool against the schemas in docs/schema.
#ifndef TABWERK_TESTS_CLI_JSON_SCHEMA_H
#define TABWERK_TESTS_CLI_JSON_SCHEMA_H

#include <string>

namespace tabwerk::test {

// What a text of JSON has that docs/schema/NAME.json does not allow, a line for
// each; empty when it is as described.  Knows the words type, enum, minimum,
// maximum, items, properties, required and additionalProperties; any other word
// of a schema that could forbid something is reported as well.
std::string AgainstSchema(std::string const& name, std::string const& text);

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_CLI_JSON_SCHEMA_H
