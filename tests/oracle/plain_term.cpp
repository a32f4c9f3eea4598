#include "tests/oracle/plain_term.h"

#include <algorithm>

namespace Calder::Oracle {

namespace {

constexpr bool kinds_stand_in_order() {
    for (std::size_t index = 0; index < std::size(kinds); ++index) {
        if (static_cast<std::size_t>(kinds[index].kind) != index) {
            return false;
        }
    }
    return std::end(kinds)[-1].kind == Kind::synchronising_interrupt;
}
static_assert(kinds_stand_in_order());

std::string text_of(Events const& events) {
    std::string text = "{";
    for (unsigned const event : events) {
        text += (event == *events.begin() ? "" : " ") + std::to_string(event);
    }
    return text + "}";
}

/// The term without one thing: an argument that may be left out, an event, a pair.
std::vector<Term> with_one_thing_less(Term const& term) {
    std::vector<Term> smaller;
    auto const erase = [&](auto Term::*field, std::size_t index) {
        Term& fewer = smaller.emplace_back(term);
        (fewer.*field).erase((fewer.*field).begin() + static_cast<std::ptrdiff_t>(index));
    };
    bool const may_lose_any = entry_of(term.kind).arity == Arity::any && term.alphabets.empty();
    for (std::size_t i = 0; may_lose_any && i < term.arguments.size(); ++i) {
        erase(&Term::arguments, i);
    }
    for (std::size_t i = 0; i < term.pairs.size(); ++i) {
        erase(&Term::pairs, i);
    }
    for (unsigned const event : term.kind == Kind::prefix ? Events() : term.events) {
        smaller.emplace_back(term).events.erase(event);
    }
    for (std::size_t i = 0; i < term.alphabets.size(); ++i) {
        for (unsigned const event : term.alphabets[i]) {
            smaller.emplace_back(term).alphabets[i].erase(event);
        }
    }
    return smaller;
}

std::vector<TermPointer> smaller_terms(TermPointer const& term) {
    std::vector<TermPointer> smaller = term->arguments;
    if (!(term->kind == Kind::external_choice && term->arguments.empty())) {
        smaller.push_back(stop());
    }
    for (Term const& fewer : with_one_thing_less(*term)) {
        smaller.push_back(std::make_shared<Term>(fewer));
    }
    for (std::size_t index = 0; index < term->arguments.size(); ++index) {
        for (TermPointer const& argument : smaller_terms(term->arguments[index])) {
            smaller.push_back(with_argument(*term, index, argument));
        }
    }
    return smaller;
}

} // namespace

TermPointer make(Kind kind, std::vector<TermPointer> arguments, Events events) {
    return std::make_shared<Term>(Term{kind, std::move(events), std::move(arguments)});
}

TermPointer stop() {
    return make(Kind::external_choice, {});
}

TermPointer with_argument(Term const& term, std::size_t index, TermPointer const& replacement) {
    Term changed = term;
    changed.arguments[index] = replacement;
    return std::make_shared<Term>(changed);
}

bool synchronises(Term const& term) {
    return entry_of(term.kind).synchronises ||
           std::any_of(term.arguments.begin(), term.arguments.end(),
                       [](TermPointer const& argument) { return synchronises(*argument); });
}

std::string text_of(Term const& term) {
    if (term.kind == Kind::named) {
        return term.name;
    }
    std::string text = entry_of(term.kind).name;
    if (!term.events.empty()) {
        text += text_of(term.events);
    }
    for (Events const& alphabet : term.alphabets) {
        text += text_of(alphabet);
    }
    for (auto const& [left, right] : term.pairs) {
        text += "[" + std::to_string(left) + " " + std::to_string(right) + "]";
    }
    text += "(";
    for (std::size_t index = 0; index < term.arguments.size(); ++index) {
        text += (index == 0 ? "" : ", ") + text_of(*term.arguments[index]);
    }
    return text + ")";
}

std::string text_of(Model const& model) {
    std::string text = text_of(*model.term);
    for (auto const& [name, term] : model.definitions) {
        text += "\n    where " + name + " = " + text_of(*term);
    }
    return text;
}

std::vector<Model> smaller_models(Model const& model) {
    std::vector<Model> smaller;
    for (TermPointer const& term : smaller_terms(model.term)) {
        smaller.push_back({term, model.definitions});
    }
    for (auto const& [name, body] : model.definitions) {
        // The guard at the head of a definition stays, or the recursion would lose it.
        for (TermPointer const& continuation : smaller_terms(body->arguments[0])) {
            Model changed = model;
            changed.definitions[name] = with_argument(*body, 0, continuation);
            smaller.push_back(std::move(changed));
        }
    }
    std::stable_sort(smaller.begin(), smaller.end(), [](Model const& left, Model const& right) {
        return text_of(left).size() < text_of(right).size();
    });
    return smaller;
}

} // namespace Calder::Oracle
