// Painting: each step of a frame's plan drawn into the back buffer, the background, the
// presentation of the frame on the screen canvas, and the pictures the plan names.
(function (Page) {
  'use strict';
  var state = Page.state;

  // The numbers and the picture map come from the core and the resource script at build time
  // (tools/make_page_resources.py), never typed here again.
  var kBufferSide = KalveroResources.core.kBufferSide;

  // The plan's drawing steps, brushes and raster operations, as the core numbers them. A marked
  // cell's brush and a line's pen come with their colours in each step.
  var kDraw = KalveroResources.core.DrawKind;
  var kNoBrush = KalveroResources.core.CellBrush.None;
  var kRaster = KalveroResources.core.RasterOp;
  var kRasterAnd = kRaster.And;
  var kRasterOr = kRaster.Or;
  var kRasterModes = {};  // copy, AND, OR on 0/255 pixels
  kRasterModes[kRaster.Copy] = 'source-over';
  kRasterModes[kRaster.And] = 'multiply';
  kRasterModes[kRaster.Or] = 'lighter';

  // Bitmaps by resource number, as the resource script names them; the background and the
  // pieces' mask among them.
  var kBackground = KalveroResources.ids.IDB_BACKGROUND;
  var kPieceMask = KalveroResources.ids.IDB_DISC_MASK;
  // Every other picture may be a piece's sprite: those of the mask's size that pair with it are
  // drawn as one picture (prepareMaskedSprites), the rest as they are.
  var kPieceSprites = Object.keys(KalveroResources.pictures).map(Number)
      .filter(function (id) { return id !== kPieceMask; });

  // The text of the game's font: 18 pixels from the top of the ascent to the bottom of the
  // descent, which is a 15-pixel em in the faces below; the text's top is its ascent above the
  // baseline.
  var kFont = '15px Tahoma, Arial, "Liberation Sans", "DejaVu Sans", sans-serif';
  var kFontAscent = 15;

  // The back buffer and the background, both of the largest logical size, and the screen.
  function preparePainting(screen) {
    state.back = makeCanvas(kBufferSide, kBufferSide);
    state.backContext = state.back.getContext('2d');
    state.background = makeCanvas(kBufferSide, kBufferSide);
    state.backgroundContext = state.background.getContext('2d');
    state.backgroundContext.imageSmoothingEnabled = false;
    state.backContext.imageSmoothingEnabled = false;
    state.screen = screen;
    state.screenContext = screen.getContext('2d');
  }

  function makeCanvas(width, height) {
    var canvas = document.createElement('canvas');
    canvas.width = width;
    canvas.height = height;
    return canvas;
  }

  function css(colour) {
    return 'rgb(' + (colour & 255) + ',' + ((colour >> 8) & 255) + ',' + ((colour >> 16) & 255) + ')';
  }

  // A piece is its mask drawn with AND, then its sprite with OR at the same place. Where the
  // mask is black the two leave the sprite; where it is white the sprite is black and both
  // leave the board. So the pair is drawn as one picture: the sprite, transparent where the
  // mask is white. That is the same picture in one draw instead of two with two blend modes,
  // which is what a full board's repaint spends its time on.
  function draw(kind, x, y, width, height, x2, y2, what, raster, colour, text) {
    var mask = state.pendingMask;
    if (mask) {
      state.pendingMask = null;
      var piece = kind === kDraw.Bitmap && raster === kRasterOr && x === mask.x && y === mask.y &&
                  width === mask.width && height === mask.height && maskedSprite(mask.what, what);
      if (piece) return state.backContext.drawImage(piece, x, y, width, height);
      drawStep(kDraw.Bitmap, mask.x, mask.y, mask.width, mask.height, 0, 0, mask.what, kRasterAnd, 0, '');
    }
    if (kind === kDraw.Bitmap && raster === kRasterAnd) {
      state.pendingMask = { what: what, x: x, y: y, width: width, height: height };
      return;
    }
    drawStep(kind, x, y, width, height, x2, y2, what, raster, colour, text);
  }

  // The sprite transparent where the mask is white, made at start for every sprite with the
  // pieces' mask; null for a pair that is not such a pair (a sprite that is not black wherever
  // its mask is white), which is then drawn in two steps.
  function maskedSprite(maskId, spriteId) {
    return state.maskedSprites[maskId + ':' + spriteId] || null;
  }

  async function prepareMaskedSprites() {
    var mask = state.pictures[kPieceMask];
    if (!mask) return;
    var canvas = makeCanvas(mask.width, mask.height);
    var g = canvas.getContext('2d', { willReadFrequently: true });
    g.drawImage(mask, 0, 0);
    var m = g.getImageData(0, 0, canvas.width, canvas.height).data;
    for (var id of kPieceSprites) {
      var sprite = state.pictures[id];
      if (!sprite || sprite.width !== mask.width || sprite.height !== mask.height) continue;
      g.clearRect(0, 0, canvas.width, canvas.height);
      g.drawImage(sprite, 0, 0);
      var picture = g.getImageData(0, 0, canvas.width, canvas.height);
      var p = picture.data, pair = true;
      for (var i = 0; i < p.length && pair; i += 4) {
        var maskBlack = m[i] === 0 && m[i + 1] === 0 && m[i + 2] === 0;
        var maskWhite = m[i] === 255 && m[i + 1] === 255 && m[i + 2] === 255;
        pair = maskBlack || (maskWhite && p[i] === 0 && p[i + 1] === 0 && p[i + 2] === 0);
        p[i + 3] = maskBlack ? 255 : 0;
      }
      // A bitmap, not a canvas: a canvas read back on the processor is slow to draw from.
      if (pair) state.maskedSprites[kPieceMask + ':' + id] = await createImageBitmap(picture);
    }
  }

  // One step of a frame's plan, in the back buffer.
  function drawStep(kind, x, y, width, height, x2, y2, what, raster, colour, text) {
    var g = state.backContext;
    switch (kind) {
      case kDraw.FillBlack:
        g.fillStyle = '#000';
        g.fillRect(x, y, width, height);
        break;
      case kDraw.CopyBackground:
        if (width > 0 && height > 0) g.drawImage(state.background, x, y, width, height, x, y, width, height);
        break;
      case kDraw.Line:
        // The board's lines run along a row or a column; the end point is not drawn.
        g.fillStyle = css(colour);
        if (y === y2) g.fillRect(Math.min(x, x2 + 1), y, Math.abs(x2 - x), 1);
        else if (x === x2) g.fillRect(x, Math.min(y, y2 + 1), 1, Math.abs(y2 - y));
        break;
      case kDraw.FillCell:
        if (what !== kNoBrush) {
          g.fillStyle = css(colour);
          g.fillRect(x, y, width, height);
        }
        break;
      case kDraw.Bitmap: {
        var picture = state.pictures[what];
        if (!picture || width <= 0 || height <= 0) break;  // a missing picture draws nothing
        g.globalCompositeOperation = kRasterModes[raster] || 'source-over';
        g.drawImage(picture, x, y, width, height);
        g.globalCompositeOperation = 'source-over';
        break;
      }
      case kDraw.Text:
        g.font = kFont;
        g.textBaseline = 'alphabetic';
        g.fillStyle = css(colour);
        g.fillText(text, x, y + kFontAscent);
        break;
    }
  }

  // The background picture (one black pixel above one dark blue one) at the logical size,
  // repeated pixel for pixel, never blended.
  function refillBackground(width, height) {
    var g = state.backgroundContext;
    g.fillStyle = '#000';
    g.fillRect(0, 0, kBufferSide, kBufferSide);
    var picture = state.pictures[kBackground];
    if (picture && width > 0 && height > 0) g.drawImage(picture, 0, 0, width, height);
  }

  // The frame on the screen canvas, whose pixels are the device's (frame.js sizes it): places in
  // client pixels are multiplied by the pixel ratio and rounded, so that without smoothing every
  // logical pixel becomes whole device pixels of one colour, at any ratio.
  function present(sourceWidth, sourceHeight, x, y, width, height, smoothing, black) {
    draw(-1);  // a mask still waiting for its sprite is drawn as it is
    var ratio = state.pixelRatio;
    function device(v) { return Math.round(v * ratio); }
    function fill(left, top, w, h) {
      g.fillRect(device(left), device(top), device(left + w) - device(left), device(top + h) - device(top));
    }
    var g = state.screenContext;
    g.imageSmoothingEnabled = smoothing;
    g.imageSmoothingQuality = 'high';
    if (width > 0 && height > 0 && sourceWidth > 0 && sourceHeight > 0) {
      g.drawImage(state.back, 0, 0, sourceWidth, sourceHeight, device(x), device(y),
                  device(x + width) - device(x), device(y + height) - device(y));
    }
    g.fillStyle = '#000';
    for (var i = 0; i + 3 < black.length; i += 4) fill(black[i], black[i + 1], black[i + 2], black[i + 3]);
    // The moment the first frame is on the screen, for measuring the start.
    if (!state.framesShown++) performance.mark('kalvero4-first-frame');
  }

  // The bitmaps come in one file (tools/make_site_pictures.py puts them side by side and
  // writes Page.pictureAtlas, their places in it): one request instead of one per picture.
  // Each is then cut out as a picture of its own, pixel for pixel.
  function loadPictures() {
    var atlas = Page.pictureAtlas;
    return new Promise(function (resolve, reject) {
      var image = new Image();
      image.onload = function () { resolve(image); };
      // Pictures that do not come are a site that did not load: the start says so.
      image.onerror = function () { reject(new Error('no pictures in ' + atlas.file)); };
      image.src = atlas.file;
    }).then(function (image) {
      return Promise.all(Object.keys(atlas.pictures).map(function (id) {
        var place = atlas.pictures[id];
        return createImageBitmap(image, place[0], place[1], place[2], place[3]).then(
            function (picture) { state.pictures[id] = picture; });
      }));
    });
  }


  Object.assign(Page, {
    preparePainting: preparePainting, draw: draw, prepareMaskedSprites: prepareMaskedSprites,
    refillBackground: refillBackground, present: present, loadPictures: loadPictures,
  });
})(Page);
