// The looks of the site, for paper and for night, for a desk and for a hand.
#include "gather/SiteFrame.h"

namespace velmo::detail {

std::string_view siteStyleSheet() {
    return R"css(:root {
  color-scheme: light dark;
  --paper: #fbfaf7; --raised: #ffffff; --ink: #211f1b; --quiet: #6d685e; --line: #e3dfd6;
  --link: #1f4f7a; --accent: #a8482a; --mark: #fbe6a2; --mark-ink: #211f1b;
}
@media (prefers-color-scheme: dark) {
  :root {
    --paper: #171614; --raised: #201e1b; --ink: #e9e4da; --quiet: #9d968a; --line: #35322d;
    --link: #9cc3e6; --accent: #e58c67; --mark: #6a5416; --mark-ink: #fff6dc;
  }
}
* { box-sizing: border-box; }
html { font: 100%/1.55 system-ui, -apple-system, "Segoe UI", "DejaVu Sans", sans-serif; }
body { margin: 0; background: var(--paper); color: var(--ink); }
a { color: var(--link); text-decoration-thickness: 1px; text-underline-offset: .15em; }
a:hover { color: var(--accent); }
:focus-visible { outline: 2px solid var(--accent); outline-offset: 2px; border-radius: 3px; }
.hidden, .skip:not(:focus) {
  position: absolute; width: 1px; height: 1px; overflow: hidden; clip-path: inset(50%); white-space: nowrap;
}
.skip:focus { position: absolute; padding: .5rem 1rem; background: var(--raised); }
header {
  display: flex; flex-wrap: wrap; gap: .75rem 1.5rem; align-items: center;
  padding: .9rem clamp(1rem, 4vw, 3rem); border-bottom: 1px solid var(--line); background: var(--raised);
}
.home { font: 600 1.2rem Georgia, "Noto Serif", "DejaVu Serif", serif; color: var(--ink); text-decoration: none; }
form { display: flex; flex: 1 1 24rem; flex-wrap: wrap; gap: .5rem; max-width: 52rem; }
input[type=search] { flex: 1 1 14rem; min-width: 0; }
input, button, select {
  font: inherit; color: inherit; padding: .45rem .75rem; border: 1px solid var(--line); border-radius: .45rem;
  background: var(--paper);
}
button { background: var(--accent); border-color: var(--accent); color: var(--raised); cursor: pointer; }
.order { display: flex; gap: .5rem; align-items: center; color: var(--quiet); font-size: .9rem; }
main { padding: 1.25rem clamp(1rem, 4vw, 3rem) 4rem; max-width: 84rem; }
.count, .from, .ends, dt, .note { color: var(--quiet); font-size: .9rem; }
.count { margin: 0 0 .75rem; }
.note { border-left: 3px solid var(--accent); padding-left: .75rem; }
.filter {
  display: inline-block; margin: 0 .5rem .75rem 0; padding: .1rem .7rem; border: 1px solid var(--line);
  border-radius: 1rem; text-decoration: none; font-size: .9rem; background: var(--raised);
}
.found { display: grid; grid-template-columns: minmax(0, 46rem) minmax(11rem, 15rem); gap: 3rem; }
.results { list-style: none; margin: 0; padding: 0; }
.results li { padding: 0 0 1.6rem; }
.results h2, h1 { font-family: Georgia, "Noto Serif", "DejaVu Serif", serif; font-weight: 500; overflow-wrap: anywhere; }
.results h2 { margin: 0; font-size: 1.2rem; line-height: 1.3; }
.results h2 a { text-decoration: none; }
.results h2 a:hover { text-decoration: underline; }
.from { margin: .1rem 0 .3rem; overflow-wrap: anywhere; }
.from .outside { color: var(--quiet); text-decoration: none; }
.from .outside:hover { color: var(--accent); text-decoration: underline; }
.dot { padding: 0 .15rem; }
.excerpt { margin: 0; overflow-wrap: anywhere; }
mark { background: var(--mark); color: var(--mark-ink); border-radius: .2em; padding: 0 .12em; }
aside h2 { margin: 0 0 .35rem; font-size: .8rem; font-weight: 600; letter-spacing: .06em; text-transform: uppercase; color: var(--quiet); }
aside section { margin-bottom: 1.6rem; }
aside ul { list-style: none; margin: 0; padding: 0; }
aside li a { display: grid; grid-template-columns: 1fr auto; column-gap: .75rem; padding: .15rem 0; text-decoration: none; font-size: .92rem; }
.name { overflow: hidden; text-overflow: ellipsis; white-space: nowrap; }
.number { color: var(--quiet); font-variant-numeric: tabular-nums; }
.bar { grid-column: 1 / -1; width: 100%; height: 4px; }
.bar rect, .years rect { fill: var(--accent); opacity: .55; }
.years { width: 100%; max-height: 5rem; }
.years a:hover rect, .years a:focus rect { opacity: 1; }
.ends { display: flex; justify-content: space-between; margin: 0; }
.steps, .way { display: flex; gap: 1.5rem; margin: .5rem 0 1rem; }
.way { position: sticky; top: 0; padding: .5rem 0; background: var(--paper); border-bottom: 1px solid var(--line); }
h1 { font-size: clamp(1.5rem, 4vw, 2.1rem); line-height: 1.2; margin: 1rem 0; }
article { max-width: 46rem; }
dl { display: grid; grid-template-columns: max-content 1fr; gap: .15rem 1.25rem; margin: 0 0 1rem; }
dd { margin: 0; overflow-wrap: anywhere; }
.text {
  font: 1.06rem/1.65 Georgia, "Noto Serif", "DejaVu Serif", serif; white-space: pre-wrap; overflow-wrap: anywhere;
  margin-top: 1.5rem;
}
.hit { color: inherit; text-decoration: none; scroll-margin-top: 4rem; }
.hit:target mark { outline: 2px solid var(--accent); }
.links ul { padding-left: 1.1rem; font-size: .92rem; overflow-wrap: anywhere; }
.links img { max-width: 6rem; max-height: 4rem; vertical-align: middle; margin-right: .5rem; border-radius: .3rem; }
details { margin: 1rem 0; }
summary { cursor: pointer; color: var(--quiet); }
.help table { border-collapse: collapse; margin-top: .5rem; }
.help td { padding: .25rem 1.5rem .25rem 0; vertical-align: top; }
.start { margin: 2rem 0 1rem; }
code { font: .92em ui-monospace, "DejaVu Sans Mono", monospace; }
@media (max-width: 48rem) {
  .found { grid-template-columns: minmax(0, 1fr); gap: 1rem; }
  .order { width: 100%; }
  dl { grid-template-columns: 1fr; gap: 0; }
  dd { margin-bottom: .4rem; }
}
@media print { header, aside, .steps, .way, .help { display: none; } }
)css";
}

std::string_view siteIcon() {
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 32 32\"><rect width=\"32\" "
           "height=\"32\" rx=\"7\" fill=\"#a8482a\"/><circle cx=\"14\" cy=\"14\" r=\"7\" "
           "fill=\"none\" "
           "stroke=\"#fff\" stroke-width=\"3\"/><path d=\"M19 19l7 7\" stroke=\"#fff\" "
           "stroke-width=\"3.5\" stroke-linecap=\"round\"/></svg>\n";
}

}  // namespace velmo::detail
