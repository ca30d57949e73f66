#include "LDIF_Value.h"

#include "LDIF_AttrType.h"
#include "LDIF_Exception.h"
#include "zebldapcfg.h"

#include <cstring>
#include <new>

namespace {

LDIF_Exception internalFailure(const char* text, SourcePos pos = SourcePos::here())
{
    return {LDAP_OTHER, CFG_ERR_UNEXPECTED, text, pos};
}

// The text of a value that is broken already, for a report.
std::string reportable(const LDIF_Value& value)
try {
    return value.str();
} catch (const LDIF_Exception&) {
    return {};  // The value is reported without its text.
}

void addAttribute(LDIF_Exception& failure, const _AttrType* type)
{
    failure.attrType = type;
    if (type->name != nullptr)
        failure.attribute = type->name;
}

LDIF_Exception invalidValue(const char* text, const LDIF_Value& value, SourcePos pos = SourcePos::here())
{
    LDIF_Exception failure = internalFailure(text, pos);
    if (value.attrType != nullptr) {
        addAttribute(failure, value.attrType);
        failure.value = reportable(value);
    }
    return failure;
}

std::unique_ptr<unsigned char[]> copyBlock(const LDIF_Value& value)
{
    if (value.binaryValue == nullptr && value.binaryLength != 0)
        throw invalidValue("Invalid LDIF_Value detected: binaryLength != 0", value);
    if (value.binaryValue == nullptr)
        return nullptr;
    if (value.binaryLength == 0)
        throw invalidValue("Invalid LDIF_Value detected: binaryLength < 1", value);
    std::unique_ptr<unsigned char[]> block(new (std::nothrow) unsigned char[value.binaryLength]);
    if (block == nullptr)
        throw LDIF_Exception(CFG_NO_MEMORY, CFG_ERR_UNEXPECTED, "Allocation failed");
    std::memcpy(block.get(), value.binaryValue.get(), value.binaryLength);
    return block;
}

// Null for no DN, and when memory is exhausted: the syntax then parses the text again.
std::unique_ptr<LDIF_DN> copyDn(const LDIF_DN* dn)
try {
    return dn != nullptr ? std::make_unique<LDIF_DN>(*dn) : nullptr;
} catch (const std::bad_alloc&) {
    return nullptr;
}

}  // namespace

LDIF_Value::LDIF_Value(const _AttrType* type, const char* text) : LDIF_Value(type, std::string(text)) {}

LDIF_Value::LDIF_Value(const _AttrType* type, const std::string& text) : attrType(type)
{
    if (text.find('\0') != std::string::npos) {
        *this = LDIF_Value(type, text.c_str());
        return;
    }
    if (attrType == nullptr) {
        LDIF_Exception failure = internalFailure("Illegal LDIF_Value( string ) constructor: attrType undefined");
        failure.value = text;
        throw failure;
    }
    const auto addFields = [&](LDIF_Exception& failure) {
        addAttribute(failure, type);
        failure.value = text;
    };
    wrapping("System error in LDIF_Value( string ) constructor", addFields, [&] { attrType->fromStr(*this, text); });
}

LDIF_Value::LDIF_Value(const _AttrType* type, const void* data, int length) : attrType(type)
{
    if (attrType == nullptr) {
        LDIF_Exception failure = internalFailure("Illegal LDIF_Value( binary ) constructor: attrType undefined");
        failure.value = "binary";
        throw failure;
    }
    const auto addFields = [&](LDIF_Exception& failure) { addAttribute(failure, type); };
    wrapping("System error in LDIF_Value( binary ) constructor", addFields,
             [&] { attrType->fromBin(*this, data, length); });
}

LDIF_Value::LDIF_Value(const LDIF_Value& other)
    : attrType(other.attrType), stringValue(other.stringValue), binaryLength(other.binaryLength),
      binaryValue(copyBlock(other)), dnValue(copyDn(other.dnValue.get()))
{}

LDIF_Value& LDIF_Value::operator=(const LDIF_Value& other)
{
    LDIF_Value copy(other);
    *this = std::move(copy);
    return *this;
}

std::string LDIF_Value::str() const
{
    if (attrType == nullptr || attrType->toStr == nullptr)
        throw internalFailure("Invalid LDIF_Value detected: attrType->toStr == NULL");
    return attrType->toStr(*this);
}

int LDIF_Value::compare(const LDIF_Value& other) const
{
    if (attrType == nullptr || attrType->match == nullptr)
        throw internalFailure("Invalid LDIF_Value detected: attrType->match == NULL");
    return attrType->match(*this, other);
}

int LDIF_Value::compare(const std::string& text) const
{
    if (attrType == nullptr || attrType->match == nullptr)
        throw internalFailure("Invalid LDIF_Value detected: attrType->match == NULL");
    return attrType->match(*this, LDIF_Value(attrType, text));
}
