// Text as the bytes that a form of a document sends. Takes the shared natives, evaluates to a function that takes a
// document and returns encoder(charset): a function from text to bytes, one character for each, or null for a charset
// that only the engine can write. `charset` is named as the engine names it, in lower case.
(function ({ getter, method }) {
    const createElement = method(Document, 'createElement');
    const characterSet = getter(Document, 'characterSet');

    // Script encodes into UTF-8 only. But the query of a link's address is encoded as the document's forms are, "&#NNN;"
    // for a character that has no place in the charset.
    function asLink(document) {
        return (text) => {
            const link = createElement(document, 'a');
            // An address is trimmed at its end.
            link.href = 'http://host/?' + text + '#';
            return unescape(link.search.slice(1));
        };
    }

    function asUtf8(text) {
        return Array.from(new TextEncoder().encode(text), (byte) => String.fromCharCode(byte)).join('');
    }

    const japanese = [['\u00a5', '\\'], ['\u203e', '~']];
    const peculiarities = {
        // IBM's characters as NEC placed them are only read.
        shift_jis: { skipped: [0xed, 0xee], extra: japanese },
        'euc-jp': { extra: japanese },
        big5: { first: 0xa1, last: '\u2550\u255e\u2561\u256a\u5341\u5345' },
    };

    // What the charset's decoder makes of every sequence of bytes, turned round. Of two sequences for one character
    // the first is the one to write, with few exceptions.
    function tableOf(charset) {
        const { skipped = [], first = 0x81, last = '', extra = [] } = peculiarities[charset] || {};
        const decoder = new TextDecoder(charset, { fatal: true, ignoreBOM: true });
        const table = new Map(extra);
        const enter = (...bytes) => {
            let text = '';
            try {
                text = decoder.decode(new Uint8Array(bytes));
            } catch (error) {
                return;
            }
            if (text > '\x7f' && Array.from(text).length === 1 && (!table.has(text) || last.includes(text)))
                table.set(text, String.fromCharCode(...bytes));
        };
        for (let byte = 0x80; byte <= 0xff; ++byte)
            enter(byte);
        if (table.size > 80)
            return table;
        for (let lead = first; lead <= 0xfe; ++lead) {
            for (let trail = 0x40; trail <= 0xfe && !skipped.includes(lead); ++trail)
                enter(lead, trail);
        }
        if (table.has('\uff0d') && extra === japanese)
            table.set('\u2212', table.get('\uff0d'));
        return table;
    }

    function asTable(table) {
        return (text) => Array.from(text, (character) =>
            table.get(character) || (character <= '\x7f' ? character : '&#' + character.codePointAt(0) + ';')).join('');
    }

    // An empty document in the charset, which is what a transformation makes when its style sheet says so. Null where
    // the engine does not do that.
    function documentIn(charset) {
        if (typeof XSLTProcessor !== 'function')
            return null;
        const processor = new XSLTProcessor();
        processor.importStylesheet(new DOMParser().parseFromString(
            '<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">' +
            '<xsl:output method="html" encoding="' + charset + '"/><xsl:template match="/"><html/></xsl:template>' +
            '</xsl:stylesheet>', 'text/xml'));
        const made = processor.transformToDocument(new DOMParser().parseFromString('<empty/>', 'text/xml'));
        return made && characterSet(made).toLowerCase() === charset ? made : null;
    }

    function makeEncoder(charset) {
        const made = documentIn(charset);
        if (made)
            return asLink(made);
        return charset === 'gb18030' || charset === 'iso-2022-jp' ? null : asTable(tableOf(charset));
    }

    const encoders = new Map([['utf-8', asUtf8]]);
    return (document) => (charset) => {
        if (!encoders.has(charset)) {
            if (charset === characterSet(document).toLowerCase())
                return asLink(document);
            encoders.set(charset, makeEncoder(charset));
        }
        return encoders.get(charset);
    };
})
