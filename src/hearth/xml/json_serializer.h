// Objects and records as JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/limits.h>
#include <hearth/markup/json_token.h>
#include <hearth/runtime/reflection.h>

#include <cstdint>
#include <memory>

namespace ht {

class TFastString;

/// What reading does with members of JSON that an object or record does not have.
enum THtJSONUnknown : std::uint8_t { juIgnore, juRefuse };

/// Writes what classes and records have registered with TRttiContext, and reads it back: of an object its
/// published properties and fields, of a record its fields, under their names. ASCII case of names does not
/// count in reading.
///
/// - Integers and floats are numbers that read back as they were; what is no number is null.
/// - Booleans are true and false.
/// - Enumerations are strings with their names, or numbers where they have none; sets are arrays of them.
/// - Texts and characters are strings; null reads as the empty text.
/// - Dates are "2024-02-29T13:05:00.250", without ".000"; no date at all is null. In reading the time may be
///   missing, and a zone ("Z", "+01:00") turns the time into that of zone 0.
/// - Records and objects are objects; an object that is not there is null.
/// - TArray and TStrings are arrays.
///
/// Reading fills what is there: an object behind a member is filled in place, and so are records, whose other
/// fields stay. Arrays and string lists are replaced. Only where a member that can be written holds no object
/// is one created, of the class that the member is declared with; from then on the object that it is set into
/// owns it, as it would own what anybody else sets. Members that cannot be written and hold no object are
/// passed over. When reading throws, what was read so far is set, and nothing is lost.
class HT_API THtJSONSerializer : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"THtJSONSerializer", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    THtJSONUnknown UnknownMembers = juIgnore;
    /// Above 0 each part has a line of its own, indented by so many blanks a level.
    std::int32_t Spaces = 0;
    /// Of these JsonDepth counts. Objects and arrays nest no deeper than kMaxDepth, whatever is allowed.
    THtLimits Limits = HtLimits();
    static constexpr std::int32_t kMaxDepth = 1024;

    // Writing. Throws EHtJSONParserException for types that are not registered, for objects that hold
    // themselves, and beyond the depth.

    String Serialize(const TObject& Object) const { return SerializeValue(ObjectValue(Object)); }
    template <class T> String SerializeRecord(const T& Record) const
    {
        return SerializeValue(TValue::From(Record));
    }
    /// Any value: an array, a number.
    String SerializeValue(const TValue& Value) const;
    void Write(TFastString& FS, const TValue& Value) const;

    // Reading. Throws EHtJSONParserException, for values also with the name of the member: "Member Boss.Age:
    // integer expected", and EConvertError for malformed numbers. What setters throw passes through.

    void Deserialize(const String& JSON, TObject& Object) const;
    /// The caller owns the objects that the value holds.
    TValue DeserializeValue(const String& JSON, const TTypeInfo& Type) const;
    template <class T> T DeserializeRecord(const String& JSON) const
    {
        return DeserializeValue(JSON, TypeInfoOf<T>()).template Get<T>();
    }
    /// A new object of a registered class.
    std::unique_ptr<TObject> CreateObject(const String& JSON, const TRttiType& Type) const;

private:
    static TValue ObjectValue(const TObject& object) { return TValue::From(const_cast<TObject*>(&object)); }
};

}
