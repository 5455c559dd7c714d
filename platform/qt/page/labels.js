// What a person sees as a field's label, found without regard to table rows; platform/page.h says where it is looked
// for, and in which order. Takes the shared natives, evaluates to the class.
(function ({ native, limits }) {
    const nodeTypes = { element: 1, text: 3, fragment: 11 };
    const unread = new Set(['script', 'style', 'template', 'noscript', 'noframes', 'noembed', 'iframe', 'frame',
        'object', 'button', 'datalist', 'option', 'optgroup', 'title', 'svg', 'head']);
    const fields = new Set(['input', 'select', 'textarea']);
    const noFields = new Set(['hidden', 'submit', 'button', 'image', 'reset']);
    const checks = new Set(['checkbox', 'radio']);
    // What lies beyond these speaks of something else than the field.
    const walls = new Set(['form', 'table', 'h1', 'h2', 'body', 'html']);
    // A field's cell ends here at the latest.
    const ends = new Set([...walls, 'td', 'th', 'fieldset', 'dl', 'dd', 'ul', 'ol', 'li', 'main', 'section', 'article']);
    const inlineBox = /^inline-/;
    const unit = /^[\s([]*(k|kb|mb|gb|[kmg]?bytes?|kilobytes?|megabytes?|gigabytes?|usd|dollars?|eur)(?![\p{L}\p{N}])[\s)\].,;:]*/iu;

    const hasWords = (text) => /[\p{L}\p{N}]/u.test(text);
    const plain = (text) => text.replace(/[\s\u00a0]+/g, ' ').trim();
    const isElement = (node) => native.nodeType(node) === nodeTypes.element;
    const isVisible = (element) => getComputedStyle(element).visibility === 'visible';

    // The parent; a shadow root's content stands where its host does.
    function above(node) {
        const parent = native.parent(node);
        if (!parent || isElement(parent))
            return parent;
        return native.nodeType(parent) === nodeTypes.fragment ? native.host(parent) : null;
    }

    // How an element takes part in a line of text. `visible`: whether hidden visibility means hidden.
    function kindOf(element, visible) {
        const name = native.localName(element);
        if (unread.has(name) || (name === 'input' && noFields.has(native.inputType(element))))
            return 'nothing';
        if (name === 'br')
            return 'line';
        const style = getComputedStyle(element);
        if (style.display === 'none' || (visible && style.visibility !== 'visible'))
            return 'nothing';
        if (fields.has(name))
            return 'field';
        if (walls.has(name))
            return 'wall';
        if (style.display === 'inline' || style.display === 'contents' || style.display.startsWith('ruby'))
            return 'inline';
        return inlineBox.test(style.display) ? 'box' : 'block';
    }

    const back = { beside: native.previous, into: native.last };
    const on = { beside: native.next, into: native.first };

    function contentOf(element) {
        const shadow = native.shadowRoot(element);
        return shadow && !native.first(element) ? shadow : element;
    }

    // Walks from `from`, on its one side, up to the edge of `top`, and shows what it comes to: texts, fields, ends of
    // lines, and the edges of elements. Ends when `see` returns true; false when the page was too long to see all.
    function walk(from, top, way, visible, see) {
        let node = from;
        let inside = from === top;
        for (let steps = limits.look; steps > 0; --steps) {
            const next = inside ? way.into(contentOf(node)) : way.beside(node);
            if (!next) {
                if (!inside)
                    node = above(node);
                if (!node || node === top)
                    return true;
                inside = false;
                if (see(kindOf(node, visible), node))
                    return true;
                continue;
            }
            node = next;
            inside = false;
            if (native.nodeType(node) === nodeTypes.text) {
                if (see('text', node))
                    return true;
            } else if (isElement(node)) {
                const kind = kindOf(node, visible);
                if (kind !== 'nothing' && see(kind, node))
                    return true;
                inside = kind === 'inline' || kind === 'box' || kind === 'block';
            }
        }
        return false;
    }

    // The text of an element without that of the controls in it.
    function textOf(element) {
        let text = '';
        walk(element, element, on, isVisible(element), (kind, node) => {
            text += kind === 'text' ? native.data(node) : kind === 'inline' ? '' : ' ';
            return text.length > 4 * limits.label;
        });
        return plain(text).slice(0, limits.label);
    }

    // The text before a node within `top`, from the field before it on: the lines that breaks part, as one if that
    // is short enough for a label, or else the nearest. An empty line ends it: what stands above that is about
    // something else, unless a remark in brackets follows. Blocks are read one at a time, or all of them as lines.
    // `apart` tells that the text is not in the node's own block or line; `met` that a field came before any text.
    function textBefore(from, top, visible, allBlocks = false) {
        let lines = [''];
        let met = false;
        let apart = false;
        walk(from, top, back, visible, (kind, node) => {
            if (kind === 'text') {
                lines[lines.length - 1] = native.data(node).slice(-4 * limits.guess) + lines[lines.length - 1];
            } else if (kind === 'line') {
                const nearest = lines.map(plain).filter(hasWords).pop();
                if (!allBlocks && nearest && !nearest.startsWith('(') && !hasWords(lines[lines.length - 1]))
                    return true;
                lines.push('');
            } else if (allBlocks && (kind === 'box' || kind === 'block' || kind === 'nothing')) {
                lines.push('');
            } else if (kind === 'box' || kind === 'block' || kind === 'nothing') {
                if (lines.some(hasWords))
                    return true;
                if (kind === 'block') {
                    lines = [''];
                    apart = true;
                }
            } else if (kind === 'field' || kind === 'wall') {
                met = true;
                // What stands behind a field on its line is about that field.
                if (kind === 'field' && (apart || lines.length > 1))
                    lines.pop();
                else if (kind === 'field')
                    lines[0] = lines[0].replace(unit, '');
                return true;
            }
            return lines.length > limits.look / 4;
        });
        const shown = lines.map(plain).filter(hasWords);
        const joined = shown.reverse().join(' ');
        const text = joined.length <= limits.guess ? joined : shown[shown.length - 1];
        return { text: text.length <= limits.guess ? text : '', met, apart };
    }

    // Whether the next thing behind a node within `top` is a field: then what stands before both heads them
    // together and is no label of the one.
    function fieldFollows(from, top, visible) {
        let follows = false;
        const all = walk(from, top, on, visible, (kind, node) => {
            follows = kind === 'field' && !checks.has(native.localName(node) === 'input' ? native.inputType(node) : '');
            return follows || kind === 'wall' || (kind === 'text' && hasWords(native.data(node)));
        });
        return follows || !all;
    }

    function holdsFieldBehind(from, top, visible) {
        let holds = false;
        const all = walk(from, top, on, visible, (kind) => {
            holds = kind === 'field';
            return holds;
        });
        return holds || !all;
    }

    // A cell's label goes to one field of the cell, and to the lists before it.
    function isFirstIn(field, cell, visible) {
        let first = true;
        const all = walk(field, cell, back, visible, (kind, node) => {
            first = kind !== 'field' || native.localName(node) === 'select';
            return !first;
        });
        return first && all;
    }

    function blockOf(field) {
        let block = above(field);
        while (block && !ends.has(native.localName(block)) && kindOf(block, false) !== 'block')
            block = above(block);
        return block;
    }

    // As textBefore. All the text before the only field of `top` is about it: a heading, and what is explained below.
    function textFor(from, top, visible) {
        const near = textBefore(from, top, visible);
        if (!near.text || !near.apart || holdsFieldBehind(from, top, visible))
            return near;
        const all = textBefore(from, top, visible, true);
        return all.met ? near : { ...near, text: all.text };
    }

    function inBlock(field, visible) {
        const block = blockOf(field);
        const { text, apart } = textFor(field, block, visible);
        return text && apart && fieldFollows(field, block, visible) ? '' : text;
    }

    function term(field, visible) {
        let definition = above(field);
        while (definition && native.localName(definition) !== 'dd') {
            if (walls.has(native.localName(definition)))
                return '';
            definition = above(definition);
        }
        if (!definition || !isFirstIn(field, definition, visible))
            return '';
        for (let node = native.previous(definition); node; node = native.previous(node)) {
            if (isElement(node) && native.localName(node) !== 'dd')
                return native.localName(node) === 'dt' ? textOf(node) : '';
        }
        return '';
    }

    function holdsField(element, visible) {
        let holds = false;
        const all = walk(element, element, on, visible, (kind) => {
            holds = kind === 'field';
            return holds;
        });
        return holds || !all;
    }

    // Whether what stands before a cell is another field's cell: then the text in it is about that field.
    function followsField(cell, visible) {
        let node = native.previous(cell);
        for (let steps = limits.look; node && steps > 0; --steps, node = native.previous(node)) {
            if (native.nodeType(node) === nodeTypes.text && hasWords(native.data(node)))
                return false;
            if (!isElement(node) || kindOf(node, visible) === 'nothing')
                continue;
            if (kindOf(node, visible) === 'field' || holdsField(node, visible))
                return true;
            if (hasWords(textOf(node)))
                return false;
        }
        return false;
    }

    function cellBefore(field, visible) {
        let cell = blockOf(field);
        if (!cell || !isFirstIn(field, cell, visible))
            return '';
        for (let depth = 0; depth < limits.depth && cell && !ends.has(native.localName(cell)); ++depth) {
            const around = above(cell);
            if (!around)
                return '';
            const { text, met } = textFor(cell, around, visible);
            if (text && followsField(cell, visible))
                return '';
            if (text)
                return fieldFollows(cell, around, visible) ? '' : text;
            if (met || holdsFieldBehind(cell, around, visible))
                return '';
            cell = around;
        }
        return '';
    }

    // The unit that a field is counted in, where it stands right behind it.
    function unitBehind(field, visible) {
        let text = '';
        walk(field, blockOf(field), on, visible, (kind, node) => {
            if (kind === 'text')
                text += native.data(node).slice(0, limits.guess);
            return (kind !== 'text' && kind !== 'inline') || text.length > limits.guess;
        });
        const found = unit.exec(text);
        return found ? plain(found[0]) : '';
    }

    // The labels of one image of a document. `marks`: its labels and fields, in document order.
    class Labels {
        constructor(marks) {
            this.found = new Map(); // by field
            this.texts = new Map(); // by element
            this.labels = new Map(); // those of each field
            const named = new Map(); // by root, then by id: fields with their places
            for (const [place, mark] of marks.entries()) {
                const id = native.localName(mark) === 'label' ? null : native.attribute(mark, 'id');
                if (id)
                    this.enter(this.enter(named, native.rootNode(mark), Map), id, Array).push({ place, field: mark });
            }
            for (const [place, mark] of marks.entries()) {
                if (native.localName(mark) !== 'label')
                    continue;
                const id = native.attribute(mark, 'for');
                const field = id === null
                    ? native.control(mark)
                    : this.nearest((named.get(native.rootNode(mark)) || new Map()).get(id) || [], place);
                if (field)
                    this.enter(this.labels, field, Array).push(mark);
            }
        }

        enter(map, key, Type) {
            if (!map.has(key))
                map.set(key, new Type());
            return map.get(key);
        }

        // Ids are meant to be unique; where they are not, a label belongs to the field that follows it.
        nearest(named, place) {
            let [from, to] = [0, named.length - 1]; // the last one, where none follows
            while (from < to) {
                const middle = (from + to) >> 1;
                if (named[middle].place > place)
                    to = middle;
                else
                    from = middle + 1;
            }
            return named.length > 0 ? named[from].field : null;
        }

        text(element) {
            if (!this.texts.has(element))
                this.texts.set(element, textOf(element));
            return this.texts.get(element);
        }

        join(elements) {
            return elements.map((element) => this.text(element)).filter((text) => text).join(' ').slice(0, limits.label);
        }

        namedBy(field) {
            const ids = native.attribute(field, 'aria-labelledby');
            if (!ids)
                return '';
            const root = native.rootNode(field);
            const byId = native.nodeType(root) === nodeTypes.fragment ? native.byIdInShadow : native.byId;
            return this.join(ids.trim().split(/\s+/, 20).map((id) => byId(root, id)).filter((element) => element));
        }

        // [text, where it comes from]; empty texts without a label.
        of(field) {
            if (!this.found.has(field))
                this.found.set(field, this.look(field));
            return this.found.get(field);
        }

        look(field) {
            const type = native.localName(field) === 'input' ? native.inputType(field) : '';
            if (noFields.has(type) || !fields.has(native.localName(field)))
                return ['', ''];
            const visible = isVisible(field);
            const places = {
                'label': () => this.join(this.labels.get(field) || []),
                'aria-labelledby': () => this.namedBy(field),
                'aria-label': () => plain(native.attribute(field, 'aria-label') || ''),
                'text': () => checks.has(type) ? '' : inBlock(field, visible),
                'term': () => checks.has(type) ? '' : term(field, visible),
                'cell': () => checks.has(type) ? '' : cellBefore(field, visible),
                'placeholder': () => plain(native.attribute(field, 'placeholder') || ''),
                'title': () => plain(native.attribute(field, 'title') || ''),
            };
            for (const from of Object.keys(places)) {
                const text = places[from]().slice(0, limits.label);
                if (!text)
                    continue;
                const counted = checks.has(type) ? '' : unitBehind(field, visible);
                return [counted ? text + ' ' + counted : text, from];
            }
            return ['', ''];
        }
    }

    return Labels;
})
