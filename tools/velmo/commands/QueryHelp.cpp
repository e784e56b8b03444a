#include "QueryHelp.h"

namespace velmo::tool {

const std::string_view QueryHelp = R"(THE QUERY LANGUAGE

match, gather, excerpts and query all read a query so. Every text is a query; nothing is an error.

Words
  cat                     a whole word, in any case
  ~cat                    also inside a longer word
  +cat                    the same as cat; neither an operator nor negated
  "two cups"              a phrase: these words one after the other
  well-known              a word with hyphens, also found as "well known" and as wellknown

Patterns (not with --plain, where * ? stand for themselves and [text] is a comment)
  data*                   any units, also none
  c?t                     exactly one unit
  [bc]at  [a-d]at         one unit of a set
  [^a-d]at                one unit that is not in the set
                          There is no escape for these characters.
  With --comparison fuzzy words without a pattern are found by their resemblance.

Not
  -bird   !bird   NOT bird    must not hold

Operators, in any case (where none is written: AND, or --default-operator)
  a AND b   a BUT b   a & b   both
  a OR b    a | b             at least one
  a XOR b   a EOR b   a ^ b   exactly one
  a OPT b                     a; b only counts for excerpts
  a NEAR b  a NEAR/5 b        a within so many words of b, on either side
  a BEFORE/5 b                a begins after b, within so many words: looks from b ahead
  a AFTER/5 b                 a begins before b, within so many words: looks from b back
  a NEXT/5 b                  the same as BEFORE
  Without a number the distance is 10 words, or --default-distance.

Order
  Operators join their terms from left to right, none goes before another:
  a b OR c is (a AND b) OR c. Parentheses group: a AND (b OR c).
  With a negated side, as in a NEAR -b, a must stand somewhere outside all such windows.

Scripts without spaces (Chinese, Japanese, Thai, ...)
  Text between separators counts as one word, so ask with ~ or with stars: ~word or *word*.

Examples
  velmo match '(tea OR coffee) NEAR/5 cup -sugar' notes.txt
  velmo match -r 'cit[ey]* BEFORE/3 "new york"' letters/
  velmo query --tree 'a b OR c'
)";

}  // namespace velmo::tool
