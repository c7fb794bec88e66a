// Colours are mixed in OKLab, where equal steps look equally large and a mix of two hues stays clean.
// Björn Ottosson, "A perceptual color space for image processing" (2020); the matrices' numbers are his.

// Linear light to display coding (sRGB) by three square roots instead of a power.
// Ian Taylor, "sRGB Approximations for HLSL" (2012).
vec3 displayCoded(vec3 linearColor) {
    vec3 root2 = sqrt(max(linearColor, 0.0));
    vec3 root4 = sqrt(root2);
    vec3 root8 = sqrt(root4);
    return 0.585122381 * root2 + 0.783140355 * root4 - 0.368262736 * root8;
}

// Brings a colour that no screen can show nearer to the grey of its own luminance, until its smallest component is a
// fiftieth of that. Cut off at zero instead, large areas would lose their modelling in that component.
vec3 showable(vec3 linearColor) {
    float luminance = dot(linearColor, vec3(0.2126, 0.7152, 0.0722));  // of sRGB's primaries (IEC 61966-2-1)
    float smallest = min(linearColor.r, min(linearColor.g, linearColor.b));
    float room = 0.98 * luminance;
    return luminance + (linearColor - luminance) * min(room / max(luminance - smallest, 1e-6), 1.0);
}

// `lightness` 0 to 1; `ab` is the hue as a direction and the chroma as its length, about 0 to 0.3.
vec3 displayColor(float lightness, vec2 ab) {
    vec3 cone = vec3(lightness + 0.3963377774 * ab.x + 0.2158037573 * ab.y,
                     lightness - 0.1055613458 * ab.x - 0.0638541728 * ab.y,
                     lightness - 0.0894841775 * ab.x - 1.2914855480 * ab.y);
    cone = cone * cone * cone;
    vec3 linearColor = vec3(dot(cone, vec3(4.0767416621, -3.3077115913, 0.2309699292)),
                            dot(cone, vec3(-1.2684380046, 2.6097574011, -0.3413193965)),
                            dot(cone, vec3(-0.0041960863, -0.7034186147, 1.7076147010)));
    return displayCoded(showable(linearColor));
}
