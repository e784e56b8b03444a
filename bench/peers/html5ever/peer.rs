// Links and text of a page by html5ever's tokenizer, for Html5ever.cpp: no tree is built. What it
// collects is thrown away here; only its length is told.
use html5ever::tendril::StrTendril;
use html5ever::tokenizer::states::{Rawtext, Rcdata, ScriptData};
use html5ever::tokenizer::{
    BufferQueue, StartTag, Tag, TagToken, Token, TokenSink, TokenSinkResult, Tokenizer,
};
use html5ever::tokenizer::{CharacterTokens, TokenizerOpts};
use html5ever::{local_name, LocalName};

struct Collected {
    wants_links: bool,
    links: Vec<StrTendril>,
    text: String,
    in_hidden: bool,
}

fn is_hidden(name: &LocalName) -> bool {
    *name == local_name!("script") || *name == local_name!("style")
}

impl Collected {
    fn add_link(&mut self, tag: &Tag) {
        if tag.name == local_name!("a") || tag.name == local_name!("area") {
            let href = tag.attrs.iter().find(|each| each.name.local == local_name!("href"));
            self.links.extend(href.map(|each| each.value.clone()));
        }
    }
}

impl TokenSink for Collected {
    type Handle = ();

    // A tokenizer without a tree must be told how the content of an element is read.
    fn process_token(&mut self, token: Token, _line: u64) -> TokenSinkResult<()> {
        match token {
            TagToken(tag) => {
                let starts = tag.kind == StartTag;
                if is_hidden(&tag.name) {
                    self.in_hidden = starts;
                }
                if !starts {
                    return TokenSinkResult::Continue;
                }
                if self.wants_links {
                    self.add_link(&tag);
                }
                match tag.name {
                    local_name!("script") => TokenSinkResult::RawData(ScriptData),
                    local_name!("style") => TokenSinkResult::RawData(Rawtext),
                    local_name!("title") | local_name!("textarea") => {
                        TokenSinkResult::RawData(Rcdata)
                    }
                    _ => TokenSinkResult::Continue,
                }
            }
            CharacterTokens(text) => {
                if !self.wants_links && !self.in_hidden {
                    self.text.push_str(&text);
                }
                TokenSinkResult::Continue
            }
            _ => TokenSinkResult::Continue,
        }
    }
}

/// How many links a page has, or how many bytes its text.
///
/// # Safety
/// The page is UTF-8 and stays where it is meanwhile.
#[no_mangle]
pub unsafe extern "C" fn peer_html5ever(page: *const u8, length: usize, links: bool) -> usize {
    let bytes = std::slice::from_raw_parts(page, length);
    let mut input = BufferQueue::new();
    input.push_back(StrTendril::from_slice(std::str::from_utf8_unchecked(bytes)));
    let collected =
        Collected { wants_links: links, links: Vec::new(), text: String::new(), in_hidden: false };
    let mut tokenizer = Tokenizer::new(collected, TokenizerOpts::default());
    while let html5ever::tokenizer::TokenizerResult::Script(()) = tokenizer.feed(&mut input) {}
    tokenizer.end();
    tokenizer.sink.links.len() + tokenizer.sink.text.len()
}
