// Text made from a pattern and arguments.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/text_format.h>

#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/text_number.h>

#include <cmath>

namespace ht {

namespace {

/// A pattern comes from programs and translations, but a slip in it must not take the memory.
constexpr std::int64_t kMaxWidth = 0xFFFF;
constexpr int kMaxDecimals = TFloatDecimal::kMaxDigits;

struct Piece {
    std::int64_t index = -1;
    bool left = false;
    std::int64_t width = 0;
    std::int64_t precision = -1;
    char16_t type = 0;
};

class Formatter {
public:
    Formatter(std::u16string_view pattern, std::initializer_list<TVarRec> arguments)
        : FPattern(pattern)
        , FRest(pattern)
        , FArguments(arguments)
    {
    }

    String Run()
    {
        std::u16string out;
        while (!FRest.empty()) {
            const std::size_t mark = std::min(FRest.find(u'%'), FRest.size());
            out += FRest.substr(0, mark);
            FRest.remove_prefix(mark);
            if (FRest.starts_with(u"%%")) {
                out += u'%';
                FRest.remove_prefix(2);
            } else if (!FRest.empty()) {
                FRest.remove_prefix(1);
                AddPiece(out, ReadPiece());
            }
        }
        return String(out);
    }

private:
    [[noreturn]] void Fail() const
    {
        throw EConvertError(Concat({u"Format '", FPattern, u"' invalid or incompatible with argument"}));
    }

    bool Take(char16_t unit)
    {
        const bool found = FRest.starts_with(unit);
        FRest.remove_prefix(found ? 1 : 0);
        return found;
    }

    /// Digits, or the next argument for "*"; -1 when neither is there.
    std::int64_t ReadNumber()
    {
        if (Take(u'*')) {
            const TVarRec& argument = NextArgument(-1);
            if (argument.GetKind() != TVarRec::vrInteger || std::abs(argument.Integer()) > kMaxWidth)
                Fail();
            return argument.Integer();
        }
        std::int64_t number = -1;
        for (; !FRest.empty() && IsAsciiDigit(FRest[0]); FRest.remove_prefix(1)) {
            number = std::max<std::int64_t>(number, 0) * 10 + (FRest[0] - u'0');
            if (number > kMaxWidth)
                Fail();
        }
        return number;
    }

    Piece ReadPiece()
    {
        Piece piece;
        piece.left = Take(u'-');
        std::int64_t number = ReadNumber();
        if (!piece.left && Take(u':')) {
            piece.index = std::max<std::int64_t>(number, 0);
            piece.left = Take(u'-');
            number = ReadNumber();
        }
        piece.left = piece.left || number < -1;
        piece.width = number == -1 ? 0 : std::abs(number);
        if (Take(u'.'))
            piece.precision = std::max<std::int64_t>(ReadNumber(), 0);
        if (FRest.empty())
            Fail();
        piece.type = FoldAscii(FRest[0]);
        FRest.remove_prefix(1);
        return piece;
    }

    const TVarRec& NextArgument(std::int64_t index)
    {
        if (index >= 0)
            FNext = static_cast<std::size_t>(index);
        if (FNext >= FArguments.size())
            Fail();
        return FArguments.begin()[FNext++];
    }

    void AddPiece(std::u16string& out, const Piece& piece)
    {
        const String text = TextOf(piece, NextArgument(piece.index));
        const auto width = static_cast<std::size_t>(piece.width);
        const std::size_t padding = width > text.size() ? width - text.size() : 0;
        if (!piece.left)
            out.append(padding, u' ');
        out += text.View();
        if (piece.left)
            out.append(padding, u' ');
    }

    String TextOf(const Piece& piece, const TVarRec& argument) const
    {
        switch (piece.type) {
        case u's':
            if (argument.GetKind() != TVarRec::vrText)
                Fail();
            return String(argument.Text().substr(0,
                piece.precision < 0 ? std::u16string_view::npos : static_cast<std::size_t>(piece.precision)));
        case u'd':
        case u'u':
        case u'x':
            if (argument.GetKind() != TVarRec::vrInteger)
                Fail();
            return IntegerText(piece, argument);
        case u'e':
        case u'f':
        case u'g':
        case u'n':
            if (argument.GetKind() != TVarRec::vrFloat)
                Fail();
            return FloatText(piece, argument.Float());
        default:
            Fail();
        }
    }

    static String IntegerText(const Piece& piece, const TVarRec& argument)
    {
        const bool negative = piece.type == u'd' && !argument.IsUnsigned() && argument.Integer() < 0;
        const std::uint64_t bits = argument.Bits();
        const std::uint64_t magnitude =
            negative ? std::uint64_t{0} - static_cast<std::uint64_t>(argument.Integer()) : bits;
        const String digits = piece.type == u'x' ? IntToHex(bits, 1) : UIntToStr(magnitude);
        const auto wanted = static_cast<std::size_t>(std::max<std::int64_t>(piece.precision, 0));
        const std::u16string zeros(wanted > digits.size() ? wanted - digits.size() : 0, u'0');
        return Concat({negative ? u"-" : u"", zeros, digits});
    }

    static String FloatText(const Piece& piece, double value)
    {
        if (!std::isfinite(value))
            return FloatToStr(value);
        const int precision = static_cast<int>(piece.precision);
        if (piece.type == u'g')
            return FloatToStr(precision <= 0 ? value : Shortened(value, precision));
        if (piece.type == u'e')
            return ScientificText(value, precision < 0 ? 15 : std::clamp(precision, 2, kMaxDecimals));
        const int decimals = precision < 0 ? 2 : std::min(precision, kMaxDecimals);
        std::string text = FixedText(FloatToDecimal(value, kMaxDecimals, decimals), decimals);
        if (piece.type == u'n')
            SeparateThousands(text);
        return String::FromLatin1(text);
    }

    /// The value that `digits` significant digits stand for.
    static double Shortened(double value, int digits)
    {
        const TFloatDecimal number = FloatToDecimal(value, digits, TFloatDecimal::kAllDecimals);
        std::string text(number.negative ? "-0." : "0.");
        text.append(number.digits, static_cast<std::size_t>(number.count)).append("0e");
        return StrToFloat(String::FromLatin1(text.append(std::to_string(number.exponent))));
    }

    static String ScientificText(double value, int digits)
    {
        const TFloatDecimal number = FloatToDecimal(value, digits, TFloatDecimal::kAllDecimals);
        std::string text(number.negative ? "-" : "");
        text += number.count == 0 ? '0' : number.digits[0];
        text += '.';
        for (int i = 1; i < digits; ++i)
            text += i < number.count ? number.digits[i] : '0';
        const int exponent = number.count == 0 ? 0 : number.exponent - 1;
        const std::string power = std::to_string(std::abs(exponent));
        text.append(exponent < 0 ? "E-" : "E+").append(power.size() < 3 ? 3 - power.size() : 0, '0');
        return String::FromLatin1(text + power);
    }

    static void SeparateThousands(std::string& text)
    {
        const std::size_t first = text.starts_with('-') ? 1 : 0;
        for (std::size_t place = std::min(text.find('.'), text.size()); place > first + 3;) {
            place -= 3;
            text.insert(place, 1, ',');
        }
    }

    std::u16string_view FPattern;
    std::u16string_view FRest;
    std::initializer_list<TVarRec> FArguments;
    std::size_t FNext = 0;
};

}

String Format(std::u16string_view pattern, std::initializer_list<TVarRec> arguments)
{
    return Formatter(pattern, arguments).Run();
}

}
