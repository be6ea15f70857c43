// How a PPM model learns from the symbol that it has found.
#include <algorithm>
#include <array>
#include <span>
#include <utility>

#include "archive/modules/rar/unpack/ppm_model.h"

namespace quendle::modules {
namespace {

constexpr unsigned kMostFrequent = 124;  // from there on frequencies are halved
constexpr std::size_t kLongestOrder = 64;

// The frequency that a symbol begins with where another context leads to one that knows it, as often as
// `frequency` of `sum`, which is that of `count` symbols.
std::uint8_t InheritedFrequency(unsigned frequency, unsigned sum, unsigned count) {
  const unsigned own = frequency - 1;
  const unsigned others = std::max(sum - count - own, 1U);
  if (2 * own <= others) return 5 * own > others ? 2 : 1;
  return static_cast<std::uint8_t>(1 + (2 * own + 3 * others - 1) / (2 * others));
}

}  // namespace

PpmSymbol* PpmModel::Find(PpmContext* context, std::uint8_t value) {
  for (PpmSymbol& symbol : SymbolsOf(context))
    if (symbol.value == value) return &symbol;
  is_broken_ = true;
  return nullptr;
}

// `symbol`, one of several in min_, has come.
void PpmModel::Count(PpmSymbol* symbol) {
  found_ = symbol;
  symbol->frequency = static_cast<std::uint8_t>(symbol->frequency + kCounted);
  min_->SetSum(min_->Sum() + kCounted);
  if (symbol->frequency > kMostFrequent) Rescale();
}

// Halves the frequencies in min_ and orders its symbols by them. Those that come to nothing are dropped.
void PpmModel::Rescale() {
  const std::span list(ListOf(min_), min_->count);
  const auto move_up = [&list](std::size_t from, std::size_t to) {
    const auto at = [&list](std::size_t index) { return list.begin() + static_cast<std::ptrdiff_t>(index); };
    std::rotate(at(to), at(from), at(from + 1));
  };
  move_up(static_cast<std::size_t>(found_ - list.data()), 0);
  const unsigned round_up = order_fall_ != 0 ? 1 : 0;
  unsigned escapes = min_->Sum();
  unsigned sum = 0;
  unsigned bonus = kCounted;  // of the one that was found
  for (std::size_t i = 0; i < list.size(); ++i) {
    const unsigned frequency = (list[i].frequency + bonus + round_up) / 2;
    escapes -= list[i].frequency;
    sum += frequency;
    bonus = 0;
    list[i].frequency = static_cast<std::uint8_t>(frequency);
    std::size_t place = i;
    while (place > 0 && list[place - 1].frequency < frequency) --place;
    if (place != i) move_up(i, place);
  }
  std::size_t left = list.size();
  while (left > 1 && list[left - 1].frequency == 0) --left;
  escapes += static_cast<unsigned>(list.size() - left);
  DropSymbols(static_cast<unsigned>(left), escapes);
  if (left > 1) min_->SetSum(sum + escapes - escapes / 2);
}

// Keeps the first `left` symbols of min_; the very first was found.
void PpmModel::DropSymbols(unsigned left, unsigned escapes) {
  const unsigned count = min_->count;
  const PpmAddress list = min_->List();
  min_->count = static_cast<std::uint16_t>(left);
  if (left > 1) {
    min_->SetList(memory_.ShrinkList(list, count, left));
    found_ = ListOf(min_);
    return;
  }
  found_ = &min_->only;
  *found_ = *memory_.At<PpmSymbol>(list);
  memory_.FreeList(list, count);
  do {
    found_->frequency = static_cast<std::uint8_t>(found_->frequency - found_->frequency / 2);
    escapes /= 2;
  } while (escapes > 1);
}

// Counts the symbol in the suffix, too, and gives it to all contexts that it was not known in. False: the model is
// broken. When the memory is used up it begins anew.
bool PpmModel::Update() {
  const PpmSymbol found = *found_;
  PpmSymbol* in_suffix = nullptr;
  if (found.frequency < kMostFrequent / 4 && min_->suffix != 0) {
    in_suffix = CountInSuffix(found.value);
    if (in_suffix == nullptr) return false;
  }
  const PpmAddress next = Learn(found, in_suffix);
  if (is_broken_) return false;
  if (next == 0) {
    Begin();
  } else {
    min_ = max_ = At(next);
  }
  return true;
}

// The symbol there.
PpmSymbol* PpmModel::CountInSuffix(std::uint8_t value) {
  PpmContext* suffix = At(min_->suffix);
  PpmSymbol* symbol = Find(suffix, value);
  if (symbol == nullptr) return nullptr;
  if (suffix->count == 1) {
    if (symbol->frequency < 32) ++symbol->frequency;
    return symbol;
  }
  if (symbol != ListOf(suffix) && symbol->frequency >= symbol[-1].frequency) {
    std::swap(symbol[0], symbol[-1]);
    --symbol;
  }
  if (symbol->frequency < kMostFrequent - 9) {
    symbol->frequency = static_cast<std::uint8_t>(symbol->frequency + 2);
    suffix->SetSum(suffix->Sum() + 2);
  }
  return symbol;
}

// The context of what comes next. 0: the memory is used up, or the model is broken.
PpmAddress PpmModel::Learn(const PpmSymbol& found, PpmSymbol* in_suffix) {
  if (order_fall_ == 0) {
    const PpmAddress next = MakeSuccessors(found, in_suffix, false);
    found_->SetSuccessor(next);
    return next;
  }
  if (!memory_.AppendText(found.value)) return 0;
  PpmAddress successor = memory_.TextEnd();
  PpmAddress next = found.Successor();
  if (next == 0) {
    found_->SetSuccessor(successor);
    next = memory_.AddressOf(min_);
  } else {
    if (!memory_.IsUnit(next)) next = MakeSuccessors(found, in_suffix, true);
    if (next == 0) return 0;
    if (--order_fall_ == 0) {
      successor = next;
      if (max_ != min_) memory_.ShortenText();
    }
  }
  for (PpmContext* context = max_; context != min_; context = At(context->suffix))
    if (!AddSymbol(context, found, successor)) return 0;
  return next;
}

// The successor of the symbol is only text so far. Makes it a context, whose only symbol is what came next in the text,
// and likewise its suffixes, as far as the symbol has the same text for a successor in shorter contexts. The address
// of the first, 0: as Learn. `with_found`: that is the successor in min_, otherwise the one in its suffix.
PpmAddress PpmModel::MakeSuccessors(const PpmSymbol& found, PpmSymbol* in_suffix, bool with_found) {
  const PpmAddress text = found.Successor();
  std::array<PpmSymbol*, kLongestOrder> without;  // a context for successor, those of longer contexts first
  std::size_t count = 0;
  if (with_found) without[count++] = found_;
  PpmContext* suffix = min_;
  while (suffix->suffix != 0) {
    suffix = At(suffix->suffix);
    PpmSymbol* symbol = in_suffix != nullptr ? std::exchange(in_suffix, nullptr) : Find(suffix, found.value);
    if (symbol == nullptr) return 0;
    if (symbol->Successor() != text) {
      suffix = At(symbol->Successor());
      break;
    }
    if (count == without.size()) return Broken();
    without[count++] = symbol;
  }
  if (!memory_.IsUnit(memory_.AddressOf(suffix))) return Broken();
  return MakeContexts(std::span(without).first(count), text, suffix);
}

// Of the symbols the last first. `suffix` is that of the last.
PpmAddress PpmModel::MakeContexts(std::span<PpmSymbol* const> symbols, PpmAddress text, PpmContext* suffix) {
  PpmAddress made = memory_.AddressOf(suffix);
  if (symbols.empty()) return made;
  if (text == 0 || !memory_.IsText(text)) return Broken();
  PpmSymbol only{*memory_.At<std::uint8_t>(text), 0, {}};
  only.SetSuccessor(text + 1);
  const PpmSymbol* known = Find(suffix, only.value);
  if (known == nullptr) return 0;
  only.frequency = suffix->count == 1 ? known->frequency
                                      : InheritedFrequency(known->frequency, suffix->Sum(), suffix->count);
  for (auto symbol = symbols.rbegin(); symbol != symbols.rend(); ++symbol) {
    const PpmAddress context = memory_.NewContext();
    if (context == 0) return 0;
    *At(context) = {1, only, made};
    (*symbol)->SetSuccessor(context);
    made = context;
  }
  return made;
}

// The symbol is new in this context. False: the memory is used up.
bool PpmModel::AddSymbol(PpmContext* context, const PpmSymbol& found, PpmAddress successor) {
  const unsigned count = context->count;
  const unsigned found_among = min_->count;
  const PpmAddress list = count == 1 ? memory_.NewList(2) : memory_.GrowList(context->List(), count);
  if (list == 0) return false;
  unsigned sum = context->Sum();
  if (count == 1) {
    PpmSymbol& first = *memory_.At<PpmSymbol>(list) = context->only;
    const unsigned frequency = first.frequency;
    first.frequency =
        static_cast<std::uint8_t>(frequency < kMostFrequent / 4 - 1 ? 2 * frequency : kMostFrequent - 4);
    sum = first.frequency + escape_estimate_ + (found_among > 3 ? 1U : 0U);
  } else {
    sum += (2 * count < found_among ? 1U : 0U) + (4 * count <= found_among && sum <= 8 * count ? 2U : 0U);
  }
  const unsigned others = min_->Sum() - found_among - (found.frequency - 1U);
  const unsigned share = 2 * found.frequency * (sum + 6);
  const unsigned whole = others + sum;
  const auto exceeds = [&](unsigned times) { return share >= times * whole ? 1U : 0U; };
  const unsigned frequency = share < 6 * whole ? 1 + (share > whole ? 1U : 0U) + exceeds(4)
                                               : 4 + exceeds(9) + exceeds(12) + exceeds(15);
  context->SetList(list);
  context->SetSum(sum + std::max(frequency, 3U));
  PpmSymbol& added = memory_.At<PpmSymbol>(list)[count];
  added = {found.value, static_cast<std::uint8_t>(frequency), {}};
  added.SetSuccessor(successor);
  ++context->count;
  return true;
}

}  // namespace quendle::modules
