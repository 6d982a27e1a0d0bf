// The methods of the add-ons API as people and programs are told about them.
#pragma once

#include <string>
#include <vector>

namespace interface {

inline constexpr char kApi[] = "ORVA.Camvora.AddOns";
inline constexpr int kVersion = 1;

enum class Type { kInteger, kText, kBoolean, kObject, kArray, kNull, kFile };

// A parameter of a method, or a member of what it answers.
struct Field {
    const char* name;
    Type type;
    const char* meaning;
    const char* byDefault = nullptr;  // as JSON; null where the parameter has to be given
};

// What a method does to the appliance. Operations have a begin and an end, and are recorded.
enum class Effect {
    kNone,
    kChange,
    kOperation,          // to one add-on or service; over when it is answered
    kDetachedOperation,  // the same, but goes on after its answer
};

struct Method {
    const char* name;
    const char* summary;  // one line without its full stop
    std::vector<Field> parameters;
    const char* answers;         // one line without its full stop
    std::vector<Field> members;  // of the answer's data; empty where there is none
    Effect effect;
};

// All of them, those that belong together beside each other.
const std::vector<Method>& Methods();

// The method of that name; null when the table has none.
const Method* FindMethod(const std::string& name);

// "integer", "text", ... for people.
const char* WordFor(Type type);

}  // namespace interface
