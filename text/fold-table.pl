# fold-table.pl UNICODE_DIR FOLDINGS - writes FoldTable.cpp to the standard output.
#
# UNICODE_DIR has UnicodeData.txt, PropList.txt and the Unihan tables as Debian's unicode-data packs them; FOLDINGS is
# foldings.txt, whose word holds where it differs from Unicode's. With --list the foldings are written one per line.
# Same sources, same bytes. docs/foldings.md tells the rules for people.
use strict;
use warnings;
use utf8;
use open qw(:std :encoding(UTF-8));
use IO::Uncompress::Bunzip2 qw($Bunzip2Error);

my $list = @ARGV && $ARGV[0] eq '--list' && shift;
my ($unicode, $foldings) = @ARGV;
defined $foldings or die "fold-table.pl [--list] UNICODE_DIR FOLDINGS\n";

# The bits of qetext.h and the codes of FoldTable.h.
my %BIT = (width => 1 << 0, blank => 1 << 1, dash => 1 << 2, number => 1 << 3, ke => 1 << 4, no => 1 << 5, tsu => 1 << 6,
    kanji => 1 << 7, combining => 1 << 8, repeat => 1 << 9, aza => 1 << 10);
my %CODE = (blank => 0xE000, selector => 0xE001, aza => 0xE002, repeat => 0xE003, voiced => 0xE004, semivoiced => 0xE005,
    (map { ("digit$_" => 0xE010 + $_) } 0 .. 9), unit10 => 0xE01A, unit100 => 0xE01B, unit1000 => 0xE01C);
my %KIND_OF_WORD = (tilde => 'dash', mark => 'width', selector => 'kanji');

sub lines {
    my ($name) = @_;
    my $in = $name =~ /\.bz2$/ ? IO::Uncompress::Bunzip2->new("$unicode/$name") : undef;
    if (!$in) {
        open $in, '<', "$unicode/$name" or die "$unicode/$name: $!\n";
    }
    my @lines = <$in>;
    @lines or die "$unicode/$name: empty\n";
    return grep { !/^#|^\s*$/ } @lines;
}

# --- the list ------------------------------------------------------------------------------------------------------
my (%to, %kind, @kanji, %apart, %together, %named, %chosen);
sub characters {
    my @codes;
    for (@_) {
        if (/^U\+([0-9A-F]+)(?:-U\+([0-9A-F]+))?$/) { push @codes, hex($1) .. hex($2 // $1) }
        elsif (length == 1) { push @codes, ord }
        else { die "$foldings:$.: $_ is not a character\n" }
    }
    return @codes;
}
sub set {
    my ($from, $to, $kind) = @_;
    die sprintf "%s:%d: U+%04X folds twice\n", $foldings, $., $from if exists $to{$from};
    $to{$from} = $to;
    $kind{$from} = $kind if $from != $to;
}
open my $in, '<', $foldings or die "$foldings: $!\n";
while (<$in>) {
    s/^#.*|\s# .*//;
    my ($word, @rest) = split or next;
    if ($word eq 'blank' || $word eq 'selector') {
        set($_, $CODE{$word}, $KIND_OF_WORD{$word} // $word) for characters(@rest);
    } elsif ($word eq 'special') {
        my $name = shift @rest;
        my $code = $CODE{$name} // die "$foldings:$.: no code $name\n";
        my $kind = $name =~ /digit|unit/ ? 'number' : $name =~ /voiced/ ? 'combining' : $name;
        set($_, $code, $kind) for characters(@rest);
    } elsif ($word eq 'kanji') {
        push @kanji, [characters(@rest)];
        die "$foldings:$.: nothing folds\n" if @{ $kanji[-1] } < 2;
        $chosen{ $kanji[-1][0] } = 1;
        for (@{ $kanji[-1] }) { die "$foldings:$.: ", chr $_, " stands in two lines\n" if $named{$_}++ }
    } elsif ($word eq 'apart' || $word eq 'together') {
        my @codes = characters(@rest);
        for my $a (@codes) {
            for my $b (@codes) { ($word eq 'apart' ? \%apart : \%together)->{"$a $b"} = 1 if $a != $b }
        }
    } elsif ($word =~ /^(?:dash|tilde|mark|ke|no|tsu)$/) {
        my ($to, @from) = characters(@rest);
        set($to, $to, '') if $word ne 'dash' && $word ne 'mark';
        set($_, $to, $KIND_OF_WORD{$word} // $word) for @from;
    } else {
        die "$foldings:$.: what is \"$word\"?\n";
    }
}
close $in;

# --- Unicode's tables ----------------------------------------------------------------------------------------------
my (%width, %pair, %composed, %blank);
for (lines('UnicodeData.txt')) {
    my ($code, undef, $category, undef, undef, $decomposition) = split /;/;
    $code = hex $code;
    $blank{$code} = 1 if $category eq 'Zs';
    if ($decomposition =~ /^(?:<(?:wide|narrow|circle|vertical|small|super|sub|font|compat)> )?([0-9A-F]+)$/) {
        $width{$code} = hex $1;
    } elsif ($decomposition =~ /^([0-9A-F]+) 3099$/) {
        $pair{ hex $1 }[0] = $code;
    } elsif ($decomposition =~ /^([0-9A-F]+) 309A$/) {
        $pair{ hex $1 }[1] = $code;
    }
}
my @dash;
open my $properties, '<', "$unicode/PropList.txt" or die "$unicode/PropList.txt: $!\n";
my ($version) = <$properties> =~ /^# PropList-([0-9.]+)\.txt/ or die "$unicode/PropList.txt: no version\n";
close $properties;
for (lines('PropList.txt')) {
    push @dash, hex($1) .. hex($2 // $1) if /^([0-9A-F]+)(?:\.\.([0-9A-F]+))?\s*;\s*Dash\b/;
}

# Characters of Japanese, by how common they are: 4 of daily use, 3 of given names, 2 and 1 of the levels of JIS X 0208,
# 0.5 of JIS X 0213. Old form => new form where Unicode says so.
my (%rank, @old);
for (lines('Unihan_OtherMappings.txt.bz2')) {
    my ($code, $field, $value) = /^U\+([0-9A-F]+)\t(\w+)\t(.*)/ or next;
    $code = hex $code;
    my $rank = $field eq 'kJoyoKanji' && $value !~ /U\+/ ? 4
        : $field eq 'kJinmeiyoKanji' && $value !~ /U\+/ ? 3
        : $field eq 'kJis0' ? ($value < 4800 ? 2 : 1)
        : $field eq 'kJIS0213' ? 0.5 : 0;
    $rank{$code} = $rank if $rank > ($rank{$code} // 0);
    push @old, [$code, hex $1] if $field =~ /^(?:kJoyoKanji|kJinmeiyoKanji)$/ && $value =~ /U\+([0-9A-F]+)/;
}
# What Unicode has as forms of a character, in one direction or the other.
my %form;
for (lines('Unihan_Variants.txt.bz2')) {
    my ($code, $field, $value) = /^U\+([0-9A-F]+)\t(\w+)\t(.*)/ or next;
    next if $field !~ /^k(?:Z|Semantic)Variant$/;
    for my $other ($value =~ /U\+([0-9A-F]+)/g) {
        next if hex $other == hex $code;
        $form{ hex $code }{ hex $other } = $form{ hex $other }{ hex $code } = 1;
    }
}

# --- kanji: classes of forms ---------------------------------------------------------------------------------------
my (%parent, %members);
sub top {
    my ($code) = @_;
    $code = $parent{$code} while defined $parent{$code};
    return $code;
}
sub better { # of two forms, the one that stands for both
    my ($a, $b) = @_;
    return $chosen{$a} ? $a : $b if !$chosen{$a} != !$chosen{$b};
    my $by_rank = ($rank{$b} // 0) <=> ($rank{$a} // 0);
    return $by_rank < 0 || ($by_rank == 0 && $a < $b) ? $a : $b;
}
# Whether the classes of two characters may become one: not when `apart` or two of daily use would meet.
sub join_classes {
    my ($a, $b, $by_hand) = @_;
    ($a, $b) = map { top(exists $width{$_} ? $width{$_} : $_) } $a, $b;
    return 1 if $a == $b;
    for my $x (@{ $members{$a} // [$a] }) {
        for my $y (@{ $members{$b} // [$b] }) {
            my $bad = $apart{"$x $y"} || (($rank{$x} // 0) == 4 && ($rank{$y} // 0) == 4 && !$together{"$x $y"});
            next if !$bad;
            die sprintf "%s: %s and %s would fold together\n", $foldings, chr $x, chr $y if $by_hand;
            return 0;
        }
    }
    my @all = (@{ $members{$a} // [$a] }, @{ $members{$b} // [$b] });
    my $best = better($a, $b);
    my $other = $best == $a ? $b : $a;
    delete $members{$other};
    $parent{$other} = $best;
    $members{$best} = \@all;
    return 1;
}
for my $class (@kanji) {
    my ($to, @from) = @$class;
    join_classes($to, $_, 1) for @from;
}
for (sort { $a->[0] <=> $b->[0] } @old) { join_classes(@$_, 0) }
# Unicode's other variants: only a rare character of Japanese, that has exactly one common form.
for my $code (sort { $a <=> $b } keys %form) {
    next if $named{$code} || !$rank{$code} || $rank{$code} >= 2;
    my %target = map { top($_) => 1 } grep { ($rank{$_} // 0) >= 2 && !$apart{"$code $_"} } keys %{ $form{$code} };
    my @target = keys %target;
    join_classes($code, $target[0], 0) if @target == 1;
}

for (sort { $a <=> $b } keys %chosen) {
    die sprintf "%s: %s folds to %s of another line\n", $foldings, chr $_, chr top($_) if top($_) != $_;
}
for (sort { $a <=> $b } keys %parent) {
    die sprintf "%s: %s is a form of %s and more\n", $foldings, chr $_, chr top($_) if exists $to{$_};
}

# --- every character -----------------------------------------------------------------------------------------------
sub fold { # (folded, kind word)
    my ($code) = @_;
    my ($now, $kind) = ($code, '');
    return (0xFFFD, '') if $code == 0 || ($code >= 0xE000 && $code <= 0xE1FF); # our own codes come from nobody else
    for (1 .. 8) {
        if (exists $to{$now}) {
            $kind = $kind{$now} if $to{$now} != $now;
            return ($to{$now}, $kind);
        }
        my $next;
        if (exists $width{$now}) {
            $next = $width{$now};
            my $han = $now >= 0x2E80 && $now <= 0x2FDF || $now >= 0xF900 && $now <= 0xFAFF || $now >= 0x2F800;
            $kind = $han ? 'kanji' : 'width' if $kind ne 'kanji';
        } elsif (defined $parent{$now}) {
            ($next, $kind) = (top($now), 'kanji');
        } elsif ($now >= 0x41 && $now <= 0x5A) {
            ($next, $kind) = ($now + 0x20, 'width');
        }
        return ($now, $kind) if !defined $next || $next == $now;
        $now = $next;
    }
    die sprintf "U+%04X folds for ever\n", $code;
}
$to{$_} //= 0x2D, $kind{$_} //= 'dash' for grep { $_ != 0x2D } @dash;
for (keys %blank) { $to{$_} = $CODE{blank}, $kind{$_} = 'blank' }

# What addresses have no use for stays as it is: letters of other scripts, signs, roman numerals.
sub wanted {
    my ($folded) = @_;
    return $folded < 0x80 || ($folded >= 0x3000 && $folded <= 0x30FF) || ($folded >= 0x3400 && $folded <= 0x9FFF)
        || ($folded >= 0xE000 && $folded <= 0xE01F) || $folded == 0xFFFD;
}
my (@difference, @kinds, @supplementary);
for my $code (0 .. 0xFFFF) {
    my ($folded, $kind) = fold($code);
    ($folded, $kind) = ($code, '') if !wanted($folded) || ($code >= 0x2150 && $code <= 0x218F);
    push @difference, $code ^ $folded;
    push @kinds, $kind eq '' ? 0 : $BIT{$kind} // die "no bit for $kind\n";
}
my %beyond = map { $_ => 1 } grep { $_ > 0xFFFF } keys %width, keys %to, keys %parent;
for my $code (sort { $a <=> $b } keys %beyond) {
    my ($folded, $kind) = fold($code);
    next if $folded == $code || !wanted($folded);
    die sprintf "U+%X stands for others\n", $folded if $folded > 0xFFFF;
    push @supplementary, [$code, $folded, $BIT{$kind}];
}
my %voiced;
for my $base (sort { $a <=> $b } keys %pair) {
    $voiced{$base} = [map { defined $_ ? (fold($_))[0] : 0 } @{ $pair{$base} }[0, 1]];
}
for my $narrow (0xFF66 .. 0xFF9D) { # half-width kana
    $voiced{$narrow} = $voiced{ $width{$narrow} } if $voiced{ $width{$narrow} };
}

if ($list) {
    my %name = reverse %BIT;
    for my $code (0x21 .. 0xFFFF) {
        next if !$difference[$code] || ($code >= 0xD800 && $code < 0xE200);
        my $folded = $code ^ $difference[$code];
        printf "%s\tU+%04X\t%s\t%s\n", $name{ $kinds[$code] }, $code, chr $code,
            $folded >= 0xE000 && $folded < 0xE020 ? sprintf('%04X', $folded) : chr $folded;
    }
    printf "%s\tU+%04X\t%s\t%s\n", $name{ $_->[2] }, $_->[0], chr $_->[0],
        $_->[1] >= 0xE000 && $_->[1] < 0xE020 ? sprintf('%04X', $_->[1]) : chr $_->[1] for @supplementary;
    exit 0;
}

# --- the file ------------------------------------------------------------------------------------------------------
sub blocks { # (number of the block of each 64, blocks)
    my (%number, @of, @block);
    for my $first (0 .. 1023) {
        my @values = @_[$first * 64 .. $first * 64 + 63];
        my $key = join ' ', @values;
        if (!exists $number{$key}) {
            $number{$key} = @block;
            push @block, \@values;
        }
        push @of, $number{$key};
    }
    return (\@of, \@block);
}
sub rows { # 16 values a line
    my ($format, @values) = @_;
    my $text = '';
    while (my @row = splice @values, 0, 16) { $text .= '    ' . join(', ', map { sprintf $format, $_ } @row) . ",\n" }
    return $text;
}
sub crc32 {
    my ($bytes) = @_;
    my $crc = 0xFFFFFFFF;
    for my $byte (unpack 'C*', $bytes) {
        $crc ^= $byte;
        $crc = $crc & 1 ? ($crc >> 1) ^ 0xEDB88320 : $crc >> 1 for 1 .. 8;
    }
    return $crc ^ 0xFFFFFFFF;
}
my ($difference_of, $difference_block) = blocks(@difference);
my ($kind_of, $kind_block) = blocks(@kinds);
my @voiced = map { [$_, @{ $voiced{$_} }] } sort { $a <=> $b } keys %voiced;
my $bytes = pack('v*', @$difference_of, map({ @$_ } @$difference_block), @$kind_of, map { @$_ } @$kind_block);
$bytes .= pack 'Vvv', @$_ for @supplementary;
$bytes .= pack 'v3', @$_ for @voiced;

my $out = <<"END";
// FoldTable.cpp - generated by fold-table.pl from foldings.txt and Unicode $version. Change those instead.
#include "text/FoldTable.h"

namespace qeadrs {

// clang-format off
END
$out .= "uint16_t const FOLD_BLOCK_OF[1024] = {\n" . rows('%d', @$difference_of) . "};\n\n";
$out .= "uint16_t const FOLD_DIFFERENCE[][64] = {\n";
$out .= "    {\n" . rows('0x%X', @$_) . "    },\n" for @$difference_block;
$out .= "};\n\nuint16_t const FOLD_KIND_OF[1024] = {\n" . rows('%d', @$kind_of) . "};\n\n";
$out .= "uint16_t const FOLD_KIND[][64] = {\n";
$out .= "    {\n" . rows('%d', @$_) . "    },\n" for @$kind_block;
$out .= "};\n\nCFoldedSupplementary const FOLD_SUPPLEMENTARY[] = {\n";
$out .= sprintf "    {0x%X, 0x%04X, %d},\n", @$_ for @supplementary;
$out .= "};\nsize_t const FOLD_SUPPLEMENTARY_COUNT = " . @supplementary . ";\n\n";
$out .= "CFoldedVoiced const FOLD_VOICED_KANA[] = {\n";
$out .= sprintf "    {0x%04X, 0x%04X, 0x%04X},\n", @$_ for @voiced;
$out .= "};\nsize_t const FOLD_VOICED_KANA_COUNT = " . @voiced . ";\n\n";
$out .= sprintf "uint32_t const FOLD_VERSION = 0x%08X;\n// clang-format on\n\n} // namespace qeadrs\n", crc32($bytes);
print $out;
