// One text as it is read, not put together from the tables of the parser: what a newcomer needs
// first stands first. It is no wider than 100 columns.
#include "QueryHelp.h"

namespace velmo::tool {

const std::string_view QueryHelp = R"(THE QUERY LANGUAGE

match, gather, excerpts and query all read a query so. Every text is a query; nothing is an error,
but what cannot mean what was written is explained on standard error, and fails with --strict.

Words
  cat                     a whole word, in any case; well-known is one word too
  ~cat                    also inside a longer word
  +cat                    the same as cat
  "two cups"              a phrase: these words one after the other

Patterns (not with --plain, where * and ? stand for themselves and [text] is a comment)
  data*                   any units, also none
  c?t                     exactly one unit
  [bc]at  [a-d]at         one unit of a set
  [^a-d]at                one unit that is not in the set
                          There is no escape for these characters.
  With --comparison fuzzy, words without such a character are found by their resemblance.

Not
  -bird  !bird  NOT bird  must not hold

Operators, in any case (where none is written it is AND, or --default-operator)
  a AND b  a BUT b  a & b both
  a OR b  a | b           at least one of them
  a XOR b  a EOR b  a ^ b exactly one of them
  a OPT b                 a; b is optional
  a NEAR b  a NEAR/5 b    a within so many words of b, before or after it; NEAR alone is 10 words,
                          or --default-distance
  a BEFORE b  a BEFORE/5 b
                          a stands before b, at most so many words; BEFORE alone is any distance
  a AFTER b  a AFTER/5 b  a stands after b, at most so many words; AFTER alone is any distance
  a NEXT b  a NEXT/5 b    as BEFORE; NEXT alone is one word
  These look from each b: back for BEFORE and NEXT, ahead for AFTER, both ways for NEAR. With a
  negated b, a must stand somewhere outside all of these stretches. A distance of 0 makes the
  operator AND.

Order
  Operators join their terms from left to right, and none goes before another: a b OR c is
  (a AND b) OR c. Parentheses group: a AND (b OR c).

Scripts without spaces: Chinese, Japanese, Thai, Lao, Burmese and Khmer
  A term is found inside what is written without spaces, and other words are found beside it. Each
  character counts as one word, in distances too; a star is as few of them as will do. With
  --whole-words all that stands between two separators is one word there: ask for a part of it
  with ~part or *part*.

Examples
  velmo match '(tea OR coffee) NEAR/5 cup -sugar' notes.txt
  velmo match -r 'cit[ey]* BEFORE/3 "new york"' letters/
  velmo query --tree 'a b OR c'
)";

}  // namespace velmo::tool
