// Ordered texts with one attached object each.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/persistent.h>
#include <hearth/runtime/storage.h>
#include <hearth/runtime/streams.h>

#include <cstdint>
#include <functional>

namespace ht {

/// Ordered texts, each with an object that is not owned. Get, Count, Delete and Insert of this class raise
/// EAbstractError. Parts: strings.cpp, strings_text.cpp.
class HT_API TStrings : public TPersistent {
public:
    static constexpr TClassInfo kClassInfo{u"TStrings", &TPersistent::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    TStrings() = default;

    virtual std::int32_t Count() const;
    String Strings(std::int32_t index) const { return Get(index); }
    String operator[](std::int32_t index) const { return Get(index); }
    void SetStrings(std::int32_t index, const String& text) { Put(index, text); }
    TObject* Objects(std::int32_t index) const { return GetObject(index); }
    void SetObjects(std::int32_t index, TObject* object) { PutObject(index, object); }

    /// Append, or put where the order wants it, and return the index.
    virtual std::int32_t Add(const String& text);
    virtual std::int32_t AddObject(const String& text, TObject* object);
    void Append(const String& text) { Add(text); }
    virtual void AddStrings(const TStrings& source);
    virtual void Insert(std::int32_t index, const String& text);
    virtual void InsertObject(std::int32_t index, const String& text, TObject* object);
    virtual void Delete(std::int32_t index);
    virtual void Clear();
    virtual void Exchange(std::int32_t index1, std::int32_t index2);
    virtual void Move(std::int32_t from, std::int32_t to);

    /// -1 when there is none.
    virtual std::int32_t IndexOf(std::u16string_view text) const;
    std::int32_t IndexOfObject(const TObject* object) const;
    /// Index of the first "name=value" with this name, -1 when there is none.
    virtual std::int32_t IndexOfName(std::u16string_view name) const;

    /// The part in front of the separator; empty without one.
    String Names(std::int32_t index) const;
    /// The part behind the separator of the first text with this name; empty when there is none.
    String Values(std::u16string_view name) const;
    /// Changes or adds "name=value"; an empty value deletes it.
    void SetValues(std::u16string_view name, std::u16string_view value);
    String ValueFromIndex(std::int32_t index) const;
    /// An empty value deletes the text; an index of -1 adds one without a name.
    void SetValueFromIndex(std::int32_t index, std::u16string_view value);

    /// All texts, a line break behind each. Setting cuts at CR, LF and CR LF, or at a line break of
    /// one's own.
    virtual String Text() const;
    virtual void SetText(std::u16string_view text);
    /// Texts with "," between; what holds blanks, quotes or commas stands in quotes. Reading also cuts
    /// at blanks.
    String CommaText() const;
    void SetCommaText(std::u16string_view text);
    /// The same with Delimiter and QuoteChar; with StrictDelimiter blanks are ordinary.
    String DelimitedText() const;
    void SetDelimitedText(std::u16string_view text);

    char16_t Delimiter() const noexcept { return FDelimiter; }
    void SetDelimiter(char16_t value) noexcept { FDelimiter = value; }
    char16_t QuoteChar() const noexcept { return FQuoteChar; }
    void SetQuoteChar(char16_t value) noexcept { FQuoteChar = value; }
    char16_t NameValueSeparator() const noexcept { return FNameValueSeparator; }
    void SetNameValueSeparator(char16_t value) noexcept { FNameValueSeparator = value; }
    bool StrictDelimiter() const noexcept { return FStrictDelimiter; }
    void SetStrictDelimiter(bool value) noexcept { FStrictDelimiter = value; }
    /// CR LF unless set.
    const String& LineBreak() const noexcept { return FLineBreak; }
    void SetLineBreak(const String& value) { FLineBreak = value; }

    void Assign(const TPersistent* source) override;
    /// The same texts in the same order; objects are not looked at.
    bool Equals(const TStrings& other) const;

    /// A byte order mark decides over the code page; 0 is the system code page. Throw as streams and code
    /// pages do.
    virtual void LoadFromStream(TStream& source, std::uint32_t codePage = 0);
    void LoadFromFile(const String& fileName, std::uint32_t codePage = 0);
    /// UTF-8 and UTF-16 begin with a byte order mark; 0 is the code page of the last load, else that of
    /// the system.
    virtual void SaveToStream(TStream& target, std::uint32_t codePage = 0) const;
    void SaveToFile(const String& fileName, std::uint32_t codePage = 0) const;

    /// Changes between the two are told once. Calls nest.
    void BeginUpdate();
    void EndUpdate();

protected:
    virtual String Get(std::int32_t index) const;
    virtual void Put(std::int32_t index, const String& text);
    virtual TObject* GetObject(std::int32_t index) const;
    virtual void PutObject(std::int32_t index, TObject* object);
    virtual void SetUpdateState(bool updating);
    /// Negative, 0 or positive. Case is ignored for all of Unicode.
    virtual int CompareStrings(std::u16string_view a, std::u16string_view b) const;
    std::int32_t UpdateCount() const noexcept { return FUpdateCount; }
    [[noreturn]] static void RaiseIndex(std::int32_t index);

private:
    /// What blanks in delimited text are.
    enum TBlankRole : std::uint8_t { brSeparator, brOrdinary };

    String Joined(char16_t delimiter, char16_t quote, TBlankRole blanks) const;
    void Split(std::u16string_view text, char16_t delimiter, char16_t quote, TBlankRole blanks);
    TBlankRole DelimitedBlanks() const noexcept { return FStrictDelimiter ? brOrdinary : brSeparator; }
    std::size_t SeparatorOf(std::u16string_view text) const noexcept
    {
        return text.find(FNameValueSeparator);
    }

    char16_t FDelimiter = u',';
    char16_t FQuoteChar = u'"';
    char16_t FNameValueSeparator = u'=';
    bool FStrictDelimiter = false;
    std::int32_t FUpdateCount = 0;
    std::uint32_t FLoadedCodePage = 0;
    String FLineBreak = u"\r\n"_s;
};

/// What a sorted list does with a text that it has already.
enum TDuplicates : std::uint8_t { dupIgnore, dupAccept, dupError };

/// One entry of a string list.
struct TStringItem {
    String FString;
    TObject* FObject = nullptr;
};

/// Texts in memory, sorted if wanted. Operations that take an index throw EStringListError outside the list.
class HT_API TStringList : public TStrings {
public:
    static constexpr TClassInfo kClassInfo{u"TStringList", &TStrings::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    using TNotify = std::function<void(TObject&)>;
    using TCompare = std::function<int(const TStringList&, std::int32_t, std::int32_t)>;

    TStringList() = default;
    TStringList(const TStringList&) = delete;
    TStringList& operator=(const TStringList&) = delete;
    /// Frees the attached objects if it owns them.
    ~TStringList() override;

    std::int32_t Count() const override { return static_cast<std::int32_t>(FItems.size()); }
    /// In a sorted list the text goes where the order wants it. A text that is there already gives its index
    /// when duplicates are ignored (the object is then not taken) and raises EStringListError when they are
    /// an error.
    std::int32_t Add(const String& text) override;
    std::int32_t AddObject(const String& text, TObject* object) override;
    /// Throw EStringListError on a sorted list.
    void Insert(std::int32_t index, const String& text) override;
    void InsertObject(std::int32_t index, const String& text, TObject* object) override;
    void Delete(std::int32_t index) override;
    void Clear() override;
    void Exchange(std::int32_t index1, std::int32_t index2) override;
    std::int32_t IndexOf(std::u16string_view text) const override;
    void Assign(const TPersistent* source) override;

    /// Searches a sorted list: the index of the text, or of the place where it belongs. Throws EListError on
    /// a list that is not sorted.
    virtual bool Find(std::u16string_view text, std::int32_t& index) const;
    /// Sort stably; any comparison is safe. CustomSort throws EStringListError on a sorted list.
    virtual void Sort();
    virtual void CustomSort(const TCompare& compare);

    bool Sorted() const noexcept { return FSorted; }
    void SetSorted(bool value);
    TDuplicates Duplicates() const noexcept { return FDuplicates; }
    void SetDuplicates(TDuplicates value) noexcept { FDuplicates = value; }
    bool CaseSensitive() const noexcept { return FCaseSensitive; }
    void SetCaseSensitive(bool value);
    bool OwnsObjects() const noexcept { return FOwnsObjects; }
    void SetOwnsObjects(bool value) noexcept { FOwnsObjects = value; }
    /// Told before and after each change, or each group of them.
    void SetOnChange(TNotify handler) { FOnChange = std::move(handler); }
    void SetOnChanging(TNotify handler) { FOnChanging = std::move(handler); }

protected:
    String Get(std::int32_t index) const override;
    void Put(std::int32_t index, const String& text) override;
    TObject* GetObject(std::int32_t index) const override;
    void PutObject(std::int32_t index, TObject* object) override;
    void SetUpdateState(bool updating) override;
    int CompareStrings(std::u16string_view a, std::u16string_view b) const override;
    virtual void Changed();
    virtual void Changing();
    /// The entries side by side, for descendants with searches of their own. Lifetime: until the
    /// list changes.
    const TStringItem* ItemData() const noexcept { return FItems.data(); }

private:
    std::size_t Checked(std::int32_t index) const
    {
        if (static_cast<std::uint32_t>(index) >= static_cast<std::uint32_t>(Count())) [[unlikely]]
            RaiseIndex(index);
        return static_cast<std::size_t>(index);
    }
    void InsertItem(std::int32_t index, const String& text, TObject* object);
    void SortBy(const TCompare& compare);

    detail::Items<TStringItem> FItems;
    bool FSorted = false;
    bool FCaseSensitive = false;
    bool FOwnsObjects = false;
    TDuplicates FDuplicates = dupIgnore;
    TNotify FOnChange;
    TNotify FOnChanging;
};

}
