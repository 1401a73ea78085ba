# messages.pl SOURCE_DIR - whether docs/troubleshooting.md and the messages of the programs are the same.
#
# A message of a program is a text of two words or more in its sources (of the files below), in C++ any string literal,
# in a script what say, fail and wrong are given. Between what changes in it, the longest part has to be on the page. A
# message of the page is what stands in `...` in the first column of a table; capitals in it stand for what changes, and
# its longest part has to be put together from texts of the sources. not-messages.txt has the texts that are none.
use strict;
use warnings;
use utf8;
use open qw(:std :encoding(UTF-8));

chdir $ARGV[0] or die "messages.pl SOURCE_DIR\n";
my $page = 'docs/troubleshooting.md';
my @cpp = grep { !m{/(Check\w*|Measure\w*|Options|Picker)\.(cpp|h)$} }
    (glob('cli/*.cpp cli/*.h builder/*.cpp builder/*.h'), 'api/qeadrs.hpp');
# Among the texts of the help and the rules of the checker (docs/checking.md) there are a few messages.
my @mixed = ('cli/Options.cpp', 'builder/Options.cpp', 'builder/Check.cpp');
my @scripts = qw(packaging/update/qeadrs-update quickstart.sh check.sh scripts/packages.sh tests/national/prepare.sh);
my $wrong = 0;

sub slurp {
    my ($file) = @_;
    open my $in, '<', $file or die "$file: $!\n";
    local $/;
    return scalar <$in>;
}

sub complain {
    print @_, "\n";
    $wrong = 1;
}

sub squeezed {
    my ($text) = @_;
    $text =~ s/\\n|\s+/ /g;
    $text =~ s/\\(["\\])/$1/g;
    $text =~ tr/`//d;
    return $text;
}

# Without what stands at its ends and may be on the page otherwise.
sub trimmed {
    my ($text) = @_;
    $text = squeezed($text);
    $text =~ s/^\s*qeadrs(?:-dic)?:\s//;
    $text =~ s/^[\s:;,."'()|]+//;
    $text =~ s/[\s:;,."'(|]+$//;
    return $text;
}

# String literals, those side by side as one; without comments, directives and assertions.
sub literals {
    my ($text) = @_;
    my (@found, $open);
    while ($text =~ m{\G(?:(?<none>//[^\n]*|/\*.*?\*/|\#[^\n]*(?:(?<=\\)\n[^\n]*)*|\bstatic_assert\s*\([^;]*;)
            |'(?:[^'\\]|\\.)+'|"(?<text>(?:[^"\\]|\\.)*)"|(?<blank>\s+)|.)}gsx) {
        if (defined $+{text}) {
            if ($open) { $found[-1] .= $+{text} } else { push @found, $+{text} }
            $open = 1;
        } elsif (!defined $+{blank} && !defined $+{none}) {
            $open = 0;
        }
    }
    return @found;
}

sub is_message { return $_[0] =~ /\p{Ll}[\p{L},;:.']* +\S*\p{L}/ && $_[0] !~ /\p{Han}/ }

sub longest {
    my $best = '';
    for (@_) { $best = $_ if length > length $best }
    return $best;
}

my (%from, %piece);    # texts of the sources: messages, each with its file; and all there are
for my $file (@cpp) {
    my $code = slurp($file);
    $code =~ s/\badd_(?:option|flag|subcommand)\((?:[^()"]|"(?:[^"\\]|\\.)*"|\([^()]*\))*\)//g;    # help
    for my $text (literals($code)) {
        $piece{trimmed($text)} = 1;
        $from{trimmed($text)} = $file if is_message($text) && length $text < 200;    # longer ones are help, too
    }
}
for my $file (@mixed) {
    for my $text (grep { /^(?:\\")? ?(?:is no |: is |: cannot |--towns or )/ } literals(slurp($file))) {
        $piece{trimmed($text)} = 1;
        $from{trimmed($text)} = $file;
    }
}
for my $file (@scripts) {
    my $text = slurp($file);
    $text =~ s/^\s*#.*$//mg;
    while ($text =~ /\b(say|fail|wrong)\s+(?:\\\n\s*)?"((?:[^"\\]|\\.)*)"|\b(printf) '(qeadrs[^']*)'|[A-Z]="([^"]*)"/g) {
        my ($said, $literal) = defined $2 ? ($1, $2) : defined $4 ? ($3, $4) : (undef, $5);
        my @parts = map { trimmed($_) } split /\$\{[^}]*\}|\$\([^)]*\)|\$\w+|\$[*#@]|%s/, $literal;
        $piece{$_} = 1 for @parts;
        my $part = longest(@parts);
        $from{$part} = $file if defined $said && is_message($part);
    }
}

my @pieces = sort { length $b <=> length $a } grep { length > 4 } keys %piece;
sub is_known {
    my ($text) = @_;
    for my $piece (@pieces) {
        return 1 if index($piece, $text) >= 0;
        $text =~ s/\Q$piece\E/|/g;
    }
    return $text !~ /\p{L}/;
}

my $shown = slurp($page);
my %none = map { $_ => 1 } grep { length && !/^#/ } split /\n/, slurp('tests/docs/not-messages.txt');
my $searched = squeezed($shown);
for my $text (sort keys %from) {
    next if delete $none{$text};
    complain("$from{$text}: \"$text\" is not in $page") if index($searched, $text) < 0;
}
complain("tests/docs/not-messages.txt: \"$_\" is in no source") for sort keys %none;

my $count = 0;
my ($tables) = $shown =~ /\n(## No dictionary\n.*)/s;    # those before are symptoms without a message
for my $row (grep { /^\| / } split /\n/, $tables) {
    my ($cell) = $row =~ /^\| (.*?) \|/;
    next if !defined $cell;
    for my $message ($cell =~ /`([^`]+)`/g) {
        my @parts = split /\b[A-Z][A-Z]+\b(?!-\d)|\bN\b/, $message;
        @parts = ('HTTP status') if $message =~ /^HTTP status/;
        my $part = longest(map { trimmed($_) } @parts);
        ++$count;
        complain("$page: \"$part\" of \"$message\" is in no source") if !is_known($part);
    }
}
complain("$page: only $count messages were found in it") if $count < 150;
print scalar(keys %from), " messages of the sources, $count of the page\n";
exit $wrong;
