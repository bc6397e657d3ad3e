/** SHA-1 of data that comes in pieces. The browser's own takes a whole file at once, and secure pages only. */
export class Sha1 {
  #h = Uint32Array.of(0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476, 0xc3d2e1f0);
  #w = new Int32Array(80);
  #rest = new Uint8Array(64);
  #filled = 0;
  #length = 0;

  /** @param {Uint8Array} bytes */
  add(bytes) {
    this.#length += bytes.length;
    let at = 0;
    if (this.#filled > 0) {
      at = Math.min(64 - this.#filled, bytes.length);
      this.#rest.set(bytes.subarray(0, at), this.#filled);
      this.#filled += at;
      if (this.#filled < 64) return this;
      this.#block(this.#rest, 0);
      this.#filled = 0;
    }
    for (; at + 64 <= bytes.length; at += 64) this.#block(bytes, at);
    this.#rest.set(bytes.subarray(at));
    this.#filled = bytes.length - at;
    return this;
  }

  /** @returns {string} 40 lower-case digits; nothing may be added afterwards */
  hex() {
    const bits = this.#length * 8;
    const padding = new Uint8Array(((this.#filled < 56 ? 56 : 120) - this.#filled) + 8);
    padding[0] = 0x80;
    const end = new DataView(padding.buffer, padding.length - 8);
    end.setUint32(0, Math.floor(bits / 2 ** 32));
    end.setUint32(4, bits % 2 ** 32);
    this.add(padding);
    return [...this.#h].map((word) => word.toString(16).padStart(8, '0')).join('');
  }

  #block(bytes, at) {
    const w = this.#w;
    for (let i = 0; i < 16; ++i, at += 4) w[i] = (bytes[at] << 24) | (bytes[at + 1] << 16) | (bytes[at + 2] << 8) | bytes[at + 3];
    for (let i = 16; i < 80; ++i) {
      const mixed = w[i - 3] ^ w[i - 8] ^ w[i - 14] ^ w[i - 16];
      w[i] = (mixed << 1) | (mixed >>> 31);
    }
    let [a, b, c, d, e] = this.#h;
    for (let i = 0; i < 80; ++i) {
      let f;
      if (i < 20) f = ((b & c) | (~b & d)) + 0x5a827999;
      else if (i < 40) f = (b ^ c ^ d) + 0x6ed9eba1;
      else if (i < 60) f = ((b & c) | (b & d) | (c & d)) + 0x8f1bbcdc;
      else f = (b ^ c ^ d) + 0xca62c1d6;
      const next = (((a << 5) | (a >>> 27)) + f + e + w[i]) | 0;
      e = d;
      d = c;
      c = (b << 30) | (b >>> 2);
      b = a;
      a = next;
    }
    const h = this.#h;
    h[0] += a;
    h[1] += b;
    h[2] += c;
    h[3] += d;
    h[4] += e;
  }
}
