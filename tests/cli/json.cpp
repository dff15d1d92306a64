#include "tests/cli/json.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <ostream>
#include <set>
#include <utility>

#include "tests/support/places.h"

namespace tabwerk::test {
namespace {

using nlohmann::json;

bool IsOfType(json const& value, std::string const& type) {
  if (type == "integer") return value.is_number_integer();
  return type == (value.is_number() ? "number" : value.type_name());
}

class Validator {
 public:
  std::string const& Faults() const { return faults_; }

  void Check(json const& value, json const& schema, std::string const& path) {
    static std::set<std::string> const known = {"$schema",
                                                "title",
                                                "description",
                                                "type",
                                                "enum",
                                                "minimum",
                                                "maximum",
                                                "items",
                                                "properties",
                                                "required",
                                                "additionalProperties"};
    for (auto const& [word, unused] : schema.items()) {
      if (!known.contains(word)) Fault(path, "unknown word " + word);
    }
    CheckValue(value, schema, path);
    if (value.is_array() && schema.contains("items")) {
      for (std::size_t i = 0; i < value.size(); ++i) {
        Check(value[i], schema["items"], path + "/" + std::to_string(i));
      }
    }
    if (value.is_object()) CheckObject(value, schema, path);
  }

 private:
  void Fault(std::string const& path, std::string const& what) {
    faults_ += path + ": " + what + "\n";
  }

  void CheckValue(json const& value, json const& schema,
                  std::string const& path) {
    if (schema.contains("type")) {
      json types = schema["type"];
      if (!types.is_array()) types = json::array({types});
      if (std::none_of(types.begin(), types.end(), [&](json const& type) {
            return IsOfType(value, type);
          })) {
        Fault(path, "is " + value.dump());
      }
    }
    if (schema.contains("enum") &&
        std::find(schema["enum"].begin(), schema["enum"].end(), value) ==
            schema["enum"].end()) {
      Fault(path, "is " + value.dump());
    }
    if (!value.is_number()) return;
    if ((schema.contains("minimum") && value < schema["minimum"]) ||
        (schema.contains("maximum") && value > schema["maximum"])) {
      Fault(path, "is " + value.dump());
    }
  }

  void CheckObject(json const& value, json const& schema,
                   std::string const& path) {
    json const properties = schema.value("properties", json::object());
    for (auto const& [key, member] : value.items()) {
      if (properties.contains(key)) {
        Check(member, properties[key], path + "/" + key);
      } else if (!schema.value("additionalProperties", true)) {
        Fault(path, "has " + key);
      }
    }
    for (json const& key : schema.value("required", json::array())) {
      if (!value.contains(key)) Fault(path, "lacks " + key.dump());
    }
  }

  std::string faults_;
};

}  // namespace

struct Json::Value {
  explicit Value(json read) : value(std::move(read)) {}

  json value;
};

Json::Json(std::shared_ptr<Value const> value) : value_(std::move(value)) {}
Json::Json(std::string const& text) : Json(std::make_shared<Value>(text)) {}
Json::Json(long long number) : Json(std::make_shared<Value>(number)) {}

Json Json::Parse(std::string const& text) {
  json value = json::parse(text, nullptr, false);
  EXPECT_FALSE(value.is_discarded()) << "no JSON: " << text;
  if (value.is_discarded()) value = nullptr;
  return Json(std::make_shared<Value>(std::move(value)));
}

Json Json::operator[](char const* name) const {
  EXPECT_TRUE(Has(name)) << name << " in " << *this;
  return Json(
      std::make_shared<Value>(Has(name) ? value_->value[name] : json()));
}

Json Json::operator[](std::size_t index) const {
  json const& value = value_->value;
  bool const is_there = value.is_array() && index < value.size();
  EXPECT_TRUE(is_there) << index << " in " << *this;
  return Json(std::make_shared<Value>(is_there ? value[index] : json()));
}

bool Json::Has(char const* name) const {
  return value_->value.is_object() && value_->value.contains(name);
}

std::size_t Json::Size() const {
  return value_->value.is_structured() ? value_->value.size() : 0;
}
bool Json::IsNull() const { return value_->value.is_null(); }
bool Json::IsTrue() const { return value_->value == true; }

std::string Json::Text() const {
  json const& value = value_->value;
  return value.is_string() ? value.get<std::string>() : value.dump();
}

std::string Json::Dump(int indent) const { return value_->value.dump(indent); }

bool operator==(Json const& a, Json const& b) {
  return a.value_->value == b.value_->value;
}

std::ostream& operator<<(std::ostream& stream, Json const& value) {
  return stream << value.Dump();
}

std::string AgainstSchema(std::string const& name, std::string const& text) {
  std::ifstream file(ProjectPath("docs/schema/" + name + ".json"));
  json const schema = json::parse(file, nullptr, false);
  json const value = json::parse(text, nullptr, false);
  if (schema.is_discarded()) return "no schema " + name;
  if (value.is_discarded()) return "no JSON: " + text;
  Validator validator;
  validator.Check(value, schema, "");
  return validator.Faults();
}

}  // namespace tabwerk::test
