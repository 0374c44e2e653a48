// The value of calc().
// SPDX-License-Identifier: MIT
#include <hearth/styling/style/measure.h>

#include <hearth/runtime/array.h>
#include <hearth/runtime/exceptions.h>
#include <hearth/styling/css/token_sequence.h>

#include <limits>
#include <utility>

namespace ht {

namespace {

constexpr char16_t kNegate = u'm'; // a "-" in front of a value

/// A lower rank binds tighter.
int RankOf(char16_t op)
{
    switch (op) {
    case u'(':
        return -1;
    case kNegate:
        return 0;
    case u'*':
    case u'/':
        return 1;
    case u')':
        return 3;
    default:
        return 2;
    }
}

template <class T> T Pop(TArray<T>& stack, const String& complaint)
{
    if (stack.IsEmpty())
        throw Exception(complaint);
    T top = stack.Last();
    stack.Delete(stack.Length() - 1);
    return top;
}

/// Values and waiting operators, in the order in which they stand.
class Calculator {
public:
    void PushValue(float value)
    {
        FValues.Add(value);
        FLastWasOp = false;
    }
    void PushOperator(char16_t op)
    {
        while (!FOperators.IsEmpty() && !Waits(op)) {
            const char16_t top = Pop(FOperators, u"Pop from empty op stack"_s);
            if (top == u'(')
                break;
            Apply(top);
        }
        if (op == u')') {
            FLastWasOp = false;
            return;
        }
        FOperators.Add(FLastWasOp && op == u'-' ? kNegate : op);
        FLastWasOp = true;
    }
    float Result() const { return FValues.IsEmpty() ? 0 : FValues.Last(); }

private:
    /// True when `op` has to be done before the operator on top.
    bool Waits(char16_t op) const
    {
        const char16_t top = FOperators.Last();
        return RankOf(op) < RankOf(top) || (op != u')' && top == u'(');
    }
    /// An operator that lacks its values does nothing.
    void Apply(char16_t op)
    {
        if (FValues.Length() < (op == kNegate ? 1 : 2))
            return;
        const float right = PopValue();
        if (op == kNegate) {
            FValues.Add(-right);
            return;
        }
        const float left = PopValue();
        FValues.Add(Combine(left, op, right));
    }
    static float Combine(float left, char16_t op, float right)
    {
        switch (op) {
        case u'+':
            return left + right;
        case u'-':
            return left - right;
        case u'*':
            return left * right;
        default:
            return right == 0 ? left : left / right;
        }
    }
    float PopValue() { return Pop(FValues, u"Pop from empty val stack"_s); }

    TArray<float> FValues;
    TArray<char16_t> FOperators;
    bool FLastWasOp = true;
};

/// The operator that a token is; U+0000 for none.
char16_t OperatorOf(const TCSSToken& token)
{
    constexpr std::u16string_view kOperators = u"+-*/()";
    const bool isOperator = token.Name.Length() == 1 && token.CType != ctString
        && kOperators.find(token.Name[0]) != std::u16string_view::npos;
    return isOperator ? token.Name[0] : u'\0';
}

}

void TMeasure::DecodeCalc()
{
    const PCSSTokens calc = std::exchange(Calc, nullptr);
    Calculator calculator;
    TCSSTokenSequence sequence;
    sequence.Init(calc);
    int depth = 1;
    for (sequence.Next(CalcStart + 2); sequence.T && depth > 0; sequence.Next()) {
        const TCSSToken& token = *sequence.T;
        if (token.CType == ctFunction && token.Name == u"calc")
            continue; // only groups, as the "(" behind it does
        const char16_t op = OperatorOf(token);
        if (op != u'\0') {
            depth += op == u'(' ? 1 : op == u')' ? -1 : 0;
            calculator.PushOperator(op);
        } else {
            Decode(sequence);
            calculator.PushValue(GetFPixels());
        }
    }
    FValue = calculator.Result();
    FMUnit = muPX;
    Flags.Include(mfNotAuto);
    if (FValue == 0)
        Flags.Include(mfZero);
    else
        Flags.Exclude(mfZero);
    Calc = calc;
}

}
