// A document as the program sees it: takes its image and carries out edits. Takes the shared natives and the class of
// labels.js, evaluates to the class.
(function ({ native, html, textTypes, limits, randomId, text }, Labels) {
    function formTags(source) {
        const tags = [];
        const opening = /<form /gi;
        for (let hit = opening.exec(source); hit && tags.length < limits.tags; hit = opening.exec(source)) {
            const end = source.indexOf('>', hit.index + 1);
            if (end < 0)
                break;
            tags.push(text(source.slice(hit.index, end + 1)));
            opening.lastIndex = end + 1;
        }
        return tags;
    }

    const fields = new Set(['input', 'select', 'textarea']);
    const frames = new Set(['iframe', 'frame', 'object', 'embed']);

    function shadowRootsIn(root, found = []) {
        const all = isFragment(root) ? native.queryAllInShadow(root, '*') : native.queryAll(root, '*');
        for (const element of all) {
            const shadow = native.shadowRoot(element);
            if (shadow) {
                found.push(shadow);
                shadowRootsIn(shadow, found);
            }
        }
        return found;
    }

    // The document's source, open shadow roots in it as templates, and whether it may hold any.
    function sourceOf(root) {
        if (typeof root.getInnerHTML === 'function') {
            const source = root.getInnerHTML({ includeShadowRoots: true });
            return { source, shadows: /<template shadowroot/.test(source) };
        }
        const shadowRoots = shadowRootsIn(root);
        const source = shadowRoots.length > 0 && typeof root.getHTML === 'function'
            ? root.getHTML({ shadowRoots })
            : native.innerHTML(root);
        return { source, shadows: shadowRoots.length > 0 };
    }

    function isFragment(root) {
        return native.nodeType(root) === 11;
    }

    // Links, forms, inputs, and all fields with the labels, in document order; a shadow root's where its host stands.
    function walkShadows(root, found) {
        const all = isFragment(root) ? native.queryAllInShadow(root, '*') : native.queryAll(root, '*');
        for (const element of all) {
            if (native.namespace(element) === html) {
                const name = native.localName(element);
                if (name === 'form')
                    found.forms.push(element);
                else if (name === 'input')
                    found.inputs.push(element);
                else if ((name === 'a' || name === 'area') && native.has(element, 'href'))
                    found.links.push(element);
                if (name === 'label' || fields.has(name))
                    found.marks.push(element);
            }
            const shadow = native.shadowRoot(element);
            if (shadow)
                walkShadows(shadow, found);
        }
        return found;
    }

    function isField(element) {
        return native.namespace(element) === html && fields.has(native.localName(element));
    }

    function nextInner(element, x, y) {
        const shadow = native.shadowRoot(element);
        const inner = shadow && native.atInShadow(shadow, x, y);
        return inner && inner !== element && native.rootNode(inner) === shadow ? inner : null;
    }

    // The field that an element belongs to, as the field itself, an option of it, or its label.
    function fieldAt(element) {
        for (let node = element; node && native.nodeType(node) === 1; node = native.parent(node)) {
            if (isField(node))
                return node;
            if (native.namespace(node) === html && native.localName(node) === 'label') {
                const field = native.control(node);
                return field && isField(field) ? field : null;
            }
        }
        return null;
    }

    // Whether the element is let through to the eye, as far as its own document tells.
    function isSeen(view, element) {
        let seen = 1;
        for (let node = element; node; node = native.nodeType(node) === 11 ? native.host(node) : native.parent(node)) {
            if (native.nodeType(node) !== 1)
                continue;
            const style = view.getComputedStyle(node);
            const filters = /opacity\(([\d.]+)/.exec(style.filter);
            seen *= parseFloat(style.opacity) * (filters ? parseFloat(filters[1]) : 1);
        }
        return seen > 0.1;
    }

    // The frame that an element shows, as a place among the window's frames and a box in the window, or null.
    function frameOf(view, element) {
        if (!frames.has(native.localName(element)))
            return null;
        const inner = element.contentWindow;
        for (let index = 0; inner && index < view.length; ++index) {
            if (view[index] !== inner)
                continue;
            const box = native.box(element);
            const style = view.getComputedStyle(element);
            const across = box.width / element.offsetWidth || 1;
            const down = box.height / element.offsetHeight || 1;
            return {
                index, across, down,
                left: box.left + (element.clientLeft + parseFloat(style.paddingLeft)) * across,
                top: box.top + (element.clientTop + parseFloat(style.paddingTop)) * down,
            };
        }
        return null;
    }

    // One document and the elements of it that were shown to the program.
    class Agent {
        constructor(view) {
            this.view = view;
            this.document = view.document;
            this.id = randomId();
            this.complete = false;
            this.numbers = new WeakMap();
            this.elements = new Map();
            this.imageCount = 0;
            this.labels = null; // while an image with labels is taken
            this.nextElement = 1;
        }

        get url() {
            return this.view.location.href;
        }

        image(parts) {
            const image = { id: this.id, url: this.url, origin: this.view.origin };
            const root = native.root(this.document);
            if (!root)
                return image;
            const { source, shadows } = sourceOf(root);
            image.tags = formTags(source);
            if (!parts.passing)
                ++this.imageCount;
            const found = shadows ? walkShadows(root, { links: [], forms: [], inputs: [], marks: [] }) : null;
            if (parts.links)
                image.links = this.showLinks(found ? found.links : native.links(this.document));
            this.labels = null;
            if (parts.labels) {
                image.source = text(source, limits.source);
                this.labels = new Labels(found ? found.marks
                    : Array.from(native.queryAll(root, 'label, input, select, textarea')));
            }
            if (parts.forms) {
                image.forms = Array.from(found ? found.forms : native.forms(this.document), (form) =>
                    this.showForm(form));
                const inputs = found ? found.inputs : native.byTag(this.document, 'INPUT');
                image.inputs = Array.from(inputs, (input) => this.showElement(input));
                const active = this.activeField();
                if (active)
                    image.active = this.showElement(active);
            }
            this.labels = null;
            if (!parts.passing)
                this.letGo();
            return image;
        }

        // The field that has the focus, or null.
        activeField() {
            const active = this.deepActive();
            return active && isField(active) ? active : null;
        }

        // Its number, 0 without one.
        focusedField() {
            const active = this.activeField();
            return active ? this.number(active) : 0;
        }

        deepActive() {
            let active = native.active(this.document);
            while (active && native.shadowRoot(active) && native.activeInShadow(native.shadowRoot(active)))
                active = native.activeInShadow(native.shadowRoot(active));
            return active;
        }

        // The field at a point of the window gets the focus, as it would under the mouse. Tells the point, and the
        // frame when it lies in one; null when that frame is one that nobody can see, so that it was not meant.
        pointAt({ x, y }) {
            let element = native.at(this.document, x, y);
            for (let inner = element; inner; inner = nextInner(inner, x, y))
                element = inner;
            const frame = element && frameOf(this.view, element);
            if (frame && !isSeen(this.view, element))
                return null;
            if (frame)
                return { frame, x: (x - frame.left) / frame.across, y: (y - frame.top) / frame.down };
            const field = fieldAt(element);
            if (field && this.deepActive() !== field) {
                native.focus(field, { preventScroll: true });
                // One that takes no focus must not leave the menu to another field.
                const active = this.deepActive();
                if (active && active !== field && native.namespace(active) === html)
                    native.blur(active);
            }
            return { x, y, element: this.focusedField() };
        }

        // Where what has the focus stands, and the frame when it is in one; null as above.
        focusPlace() {
            const active = this.deepActive();
            const frame = active && frameOf(this.view, active);
            if (frame && !isSeen(this.view, active))
                return null;
            if (frame)
                return { frame, x: 0, y: 0 };
            if (!active || !isField(active))
                return { x: 0, y: 0 };
            const { left, bottom } = native.box(active);
            return { x: left, y: bottom, element: this.number(active) };
        }

        // Elements stay reachable for as long as the last few images that showed them, and no longer. An image in
        // passing, which a page can cause as often as it likes, does not count.
        letGo() {
            if (this.imageCount % limits.images !== 0)
                return;
            for (const [number, held] of this.elements) {
                if (held.image <= this.imageCount - limits.images)
                    this.elements.delete(number);
            }
        }

        number(element) {
            const known = this.numbers.get(element);
            const number = known === undefined ? this.nextElement++ : known;
            if (known === undefined)
                this.numbers.set(element, number);
            this.elements.set(number, { element, image: this.imageCount });
            return number;
        }

        showLinks(links) {
            const shown = [];
            for (const link of links) {
                if (shown.length >= limits.elements)
                    break;
                shown.push([this.number(link), text(link.innerText)]);
            }
            return shown;
        }

        showForm(form) {
            const shown = { element: this.number(form) };
            shown.id = text(native.attribute(form, 'id'));
            // Read as page code would read it: an input of that name hides the property.
            const action = form.action;
            if (typeof action === 'string') {
                shown.action = text(native.attribute(form, 'action'));
            } else {
                shown.action = '[object]';
                shown.actionInput = text(action.value);
            }
            shown.elements = Array.from(native.elements(form), (element) => this.showElement(element));
            return shown;
        }

        showElement(element) {
            const shown = { element: this.number(element) };
            const type = text(element.type);
            shown.type = native.localName(element) === 'input' && textTypes.has(type) ? 'text' : type;
            shown.name = text(element.name);
            const value = text(element.value);
            shown.value = type === 'textarea' ? value.replace(/\r\n?|\n/g, '\r\n') : value;
            if (type === 'image')
                shown.src = text(native.attribute(element, 'src'));
            if ((type === 'submit' || type === 'image') && native.has(element, 'formaction'))
                shown.formAction = text(element.formAction);
            if (element.checked === true)
                shown.checked = true;
            if (element.readOnly === true || native.matches(element, ':disabled'))
                shown.locked = true;
            if (native.localName(element) === 'select')
                shown.options = Array.from(element.options, (option) =>
                    [this.number(option), text(option.text), text(option.value), option.selected === true]);
            if (this.labels && isField(element)) {
                const [label, from] = this.labels.of(element);
                if (label)
                    Object.assign(shown, { label, from });
            }
            return shown;
        }

        find(number) {
            const held = this.elements.get(number);
            if (!held || !native.connected(held.element) || native.owner(held.element) !== this.document)
                return null;
            return held.element;
        }

        apply(edit) {
            const element = this.find(edit.element);
            if (!element)
                return;
            const name = native.localName(element);
            if (edit.kind === 'click')
                native.click(element);
            else if (edit.kind === 'focus' && isField(element))
                native.focus(element);
            else if (edit.kind === 'value' && isField(element))
                this.write(element, () => { element.value = edit.text; });
            else if (edit.kind === 'check' && name === 'input')
                this.check(element);
            else if (edit.kind === 'select' && name === 'option')
                this.write(element.closest('select') || element, () => { element.selected = true; });
        }

        // Script frameworks hear of a check box by its click, so it is clicked; a page that undoes the click, and
        // a disabled box, get it written.
        check(element) {
            if (element.checked)
                return;
            native.click(element);
            if (!element.checked && native.connected(element))
                this.write(element, () => { element.checked = true; });
        }

        write(element, set) {
            set();
            for (const type of ['input', 'change'])
                native.dispatch(element, new Event(type, { bubbles: true, composed: type === 'input' }));
        }
    }

    return Agent;
})
